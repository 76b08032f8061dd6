// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/comm.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <tuple>

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
    const std::tuple<std::string, size_t, int16_t, const char*> rows[] = {{"GIN00200", 4, 0, "GIN"},
                                                                          {"GI 00200", 4, 0, "GI"},
                                                                          {"GI", 4, 6, nullptr},
                                                                          {"G\x01N000", 4, 6, nullptr},
                                                                          {"GIN000", 3, 2, nullptr}};
    for (const auto& row : rows) {
        const auto& [bytes, room, code, copied] = row;
        const Packet packet(bytes);
        char id[4] = "";
        const char* returned = nullptr;
        EXPECT_EQ(support::raised_by([&] { returned = abecs_comm_get_cmd_id(packet, id, std::get<1>(row)); }).code,
                  code);
        EXPECT_STREQ(returned, copied);
        EXPECT_EQ(packet.take(), bytes);
    }
    const Packet packet("GIN");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", abecs_comm_get_cmd_id(packet, nullptr, 4));
}

}  // namespace
