// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/comm.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/packets.h"
#include "tests/support/raised.h"

// What the handle keeps between exchanges.
namespace {

using support::Packet;

constexpr uint8_t kKey[16] = {0x10, 0x21, 0x32, 0x43, 0x54, 0x65, 0x76, 0x87,
                              0x98, 0xA9, 0xBA, 0xCB, 0xDC, 0xED, 0xFE, 0x0F};
constexpr AbecsWkPan kWkPan{ABECS_WK_PAN_TYPE_TDES_RSA, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};

TEST(BlockedState, LastsFromLockToReleaseAndIsToldBeforeABadId) {
    AbecsComm comm{};
    EXPECT_NO_RAISE(abecs_comm_check_busy(&comm));
    EXPECT_NO_RAISE(abecs_comm_lock(&comm, "123456789012"));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(&comm), "123456789012");
    const char* detail = "Connection is blocked waiting for 123456789012 response";
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_STATE, detail, abecs_comm_check_busy(&comm));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_STATE, detail, abecs_comm_lock(&comm, nullptr));
    EXPECT_NO_RAISE(abecs_comm_release(&comm));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "NULL/empty 'cmdId'", abecs_comm_lock(&comm, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "NULL/empty 'cmdId'", abecs_comm_lock(&comm, ""));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'cmdId' is too long: 1234567890123",
                  abecs_comm_lock(&comm, "1234567890123"));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(&comm), "");
}

TEST(Keys, AreInstalledAndTheSessionKeyRemoved) {
    AbecsComm comm{};
    EXPECT_NO_RAISE(abecs_comm_set_key(&comm, kKey));
    EXPECT_TRUE(comm.keySet);
    EXPECT_TRUE(std::ranges::equal(comm.key, kKey));
    EXPECT_NO_RAISE(abecs_comm_set_wk_pan(&comm, &kWkPan));
    EXPECT_EQ(comm.wkPanType, ABECS_WK_PAN_TYPE_TDES_RSA);
    EXPECT_TRUE(std::ranges::equal(comm.wkPanKey, kWkPan.key));
    EXPECT_TRUE(comm.panProtected && comm.panKeyInstalled);
    EXPECT_NO_RAISE(abecs_comm_set_key(&comm, nullptr));
    EXPECT_FALSE(comm.keySet);
    EXPECT_EQ(comm.key, decltype(comm.key){});
    EXPECT_TRUE(comm.panProtected && comm.panKeyInstalled);
}

TEST(Keys, RemovingThePanKeyZeroesTheSessionKeyAndKeepsItsFlag) {
    AbecsComm comm{};
    abecs_comm_set_key(&comm, kKey);
    abecs_comm_set_wk_pan(&comm, &kWkPan);
    EXPECT_NO_RAISE(abecs_comm_set_wk_pan(&comm, nullptr));
    EXPECT_FALSE(comm.panProtected || comm.panKeyInstalled);
    EXPECT_EQ(comm.key, decltype(comm.key){});
    EXPECT_TRUE(comm.keySet);
    EXPECT_TRUE(std::ranges::equal(comm.wkPanKey, kWkPan.key));
}

TEST(CmdId, IsReadWithoutBeingConsumedEvenWhenItIsBad) {
    const struct {
        std::string bytes;
        size_t room;
        int16_t code;
    } rows[] = {{"GIN00200", 4, 0}, {"GI", 4, 6}, {"G\x01N000", 4, 6}, {"GIN000", 3, 2}};
    for (const auto& row : rows) {
        const Packet packet(row.bytes);
        char id[4] = "";
        const char* returned = nullptr;
        EXPECT_EQ(support::raised_by([&] { returned = abecs_comm_get_cmd_id(packet, id, row.room); }).code, row.code);
        EXPECT_EQ(returned, row.code == 0 ? id : nullptr);
        EXPECT_STREQ(returned, row.code == 0 ? "GIN" : nullptr);
        EXPECT_EQ(packet.take(), row.bytes);
    }
    const Packet packet("GIN");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'packet' is NULL", abecs_comm_get_cmd_id(nullptr, nullptr, 0));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", abecs_comm_get_cmd_id(packet, nullptr, 4));
}

// Outside every try block the raise returns, and each function must then leave the null handle alone.
TEST(NullHandle, IsToldOnceByEachFunction) {
    const support::ReturningRaises raises;
    abecs_comm_send_can(nullptr);
    abecs_comm_check_busy(nullptr);
    abecs_comm_lock(nullptr, nullptr);
    abecs_comm_release(nullptr);
    abecs_comm_set_send_interval(nullptr, 1);
    abecs_comm_send_packet(nullptr, nullptr);
    EXPECT_EQ(abecs_comm_read_packet(nullptr, nullptr), nullptr);
    EXPECT_EQ(abecs_comm_get_send_interval(nullptr), 0);
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(nullptr), "");
    EXPECT_EQ(raises.all(), std::vector(9, support::error(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL")));
    const support::ReturningRaises others;
    abecs_comm_set_key(nullptr, nullptr);
    abecs_comm_set_wk_pan(nullptr, nullptr);
    EXPECT_EQ(others.all(), std::vector(2, support::error(KOR_RESULT_ILLEGAL_ARGUMENT, "pinpad is NULL")));
}

}  // namespace
