// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/comm.h"

#include <algorithm>
#include <functional>
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

TEST(BlockedState, LastsFromLockToRelease) {
    AbecsComm comm{};
    EXPECT_NO_RAISE(abecs_comm_check_busy(&comm));
    EXPECT_NO_RAISE(abecs_comm_lock(&comm, "GCR"));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(&comm), "GCR");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_STATE, "Connection is blocked waiting for GCR response",
                  abecs_comm_check_busy(&comm));
    EXPECT_NO_RAISE(abecs_comm_release(&comm));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(&comm), "");
    EXPECT_NO_RAISE(abecs_comm_check_busy(&comm));
}

TEST(BlockedState, LocksOnIdsOfUpTo12Characters) {
    AbecsComm comm{};
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "NULL/empty 'cmdId'", abecs_comm_lock(&comm, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "NULL/empty 'cmdId'", abecs_comm_lock(&comm, ""));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'cmdId' is too long: 1234567890123",
                  abecs_comm_lock(&comm, "1234567890123"));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(&comm), "");
    EXPECT_NO_RAISE(abecs_comm_lock(&comm, "123456789012"));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(&comm), "123456789012");
}

TEST(BlockedState, OfABlockedLinkIsToldBeforeABadId) {
    AbecsComm comm{};
    abecs_comm_lock(&comm, "GKY");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_STATE, "Connection is blocked waiting for GKY response",
                  abecs_comm_lock(&comm, nullptr));
}

TEST(Keys, SessionKeyIsInstalledAndRemoved) {
    AbecsComm comm{};
    EXPECT_NO_RAISE(abecs_comm_set_key(&comm, kKey));
    EXPECT_TRUE(comm.keySet);
    EXPECT_TRUE(std::ranges::equal(comm.key, kKey));
    EXPECT_NO_RAISE(abecs_comm_set_key(&comm, nullptr));
    EXPECT_FALSE(comm.keySet);
    EXPECT_EQ(comm.key, decltype(comm.key){});
}

TEST(Keys, PanKeyIsInstalled) {
    AbecsComm comm{};
    EXPECT_NO_RAISE(abecs_comm_set_wk_pan(&comm, &kWkPan));
    EXPECT_EQ(comm.wkPanType, ABECS_WK_PAN_TYPE_TDES_RSA);
    EXPECT_TRUE(std::ranges::equal(comm.wkPanKey, kWkPan.key));
    EXPECT_TRUE(comm.panProtected);
    EXPECT_TRUE(comm.panKeyInstalled);
}

TEST(Keys, RemovingThePanKeyZeroesTheSessionKeyAndKeepsItsFlag) {
    AbecsComm comm{};
    abecs_comm_set_key(&comm, kKey);
    abecs_comm_set_wk_pan(&comm, &kWkPan);
    EXPECT_NO_RAISE(abecs_comm_set_wk_pan(&comm, nullptr));
    EXPECT_FALSE(comm.panProtected);
    EXPECT_FALSE(comm.panKeyInstalled);
    EXPECT_EQ(comm.key, decltype(comm.key){});
    EXPECT_TRUE(comm.keySet);
    EXPECT_TRUE(std::ranges::equal(comm.wkPanKey, kWkPan.key));
}

TEST(CmdId, IsReadWithoutBeingConsumed) {
    const Packet packet("GIN00200");
    char id[4] = "";
    const char* returned = nullptr;
    EXPECT_NO_RAISE(returned = abecs_comm_get_cmd_id(packet.get(), id, sizeof id));
    EXPECT_EQ(returned, id);
    EXPECT_STREQ(id, "GIN");
    EXPECT_EQ(packet.take(), "GIN00200");
}

TEST(CmdId, ThatCannotBeReadLeavesThePacketAsItWas) {
    const struct {
        std::string bytes;
        size_t room;
    } rows[] = {{"GI", 4}, {std::string("G\x01N000"), 4}, {"GIN000", 3}};
    for (const auto& row : rows) {
        const Packet packet(row.bytes);
        char id[4] = "";
        EXPECT_NE(support::raised_by([&] { abecs_comm_get_cmd_id(packet.get(), id, row.room); }), support::Raised{});
        EXPECT_EQ(packet.take(), row.bytes);
    }
}

TEST(CmdId, NeedsAPacketAndRoom) {
    const Packet packet("GIN");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'packet' is NULL", abecs_comm_get_cmd_id(nullptr, nullptr, 0));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", abecs_comm_get_cmd_id(packet.get(), nullptr, 4));
}

// Outside every try block the raise returns, and each function must then leave the null handle alone.
TEST(NullHandle, IsToldOnceByEachFunction) {
    const struct {
        const char* detail;
        std::function<void()> call;
    } rows[] = {
        {"'pinpad' is NULL", [] { abecs_comm_send_can(nullptr); }},
        {"'pinpad' is NULL", [] { abecs_comm_check_busy(nullptr); }},
        {"'pinpad' is NULL", [] { abecs_comm_lock(nullptr, "GCR"); }},
        {"'pinpad' is NULL", [] { abecs_comm_release(nullptr); }},
        {"'pinpad' is NULL", [] { EXPECT_STREQ(abecs_comm_get_blk_wait_id(nullptr), ""); }},
        {"'pinpad' is NULL", [] { abecs_comm_set_send_interval(nullptr, 1); }},
        {"'pinpad' is NULL", [] { EXPECT_EQ(abecs_comm_get_send_interval(nullptr), 0); }},
        {"'pinpad' is NULL", [] { EXPECT_EQ(abecs_comm_read_packet(nullptr, nullptr), nullptr); }},
        {"'pinpad' is NULL", [] { abecs_comm_send_packet(nullptr, nullptr); }},
        {"pinpad is NULL", [] { abecs_comm_set_key(nullptr, nullptr); }},
        {"pinpad is NULL", [] { abecs_comm_set_wk_pan(nullptr, nullptr); }},
    };
    for (const auto& row : rows) {
        const support::ReturningRaises raises;
        row.call();
        ASSERT_EQ(raises.all().size(), 1U) << &row - rows;
        EXPECT_EQ(raises.all()[0], support::error(KOR_RESULT_ILLEGAL_ARGUMENT, row.detail)) << &row - rows;
    }
}

}  // namespace
