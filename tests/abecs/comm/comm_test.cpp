// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/comm.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <tuple>

#include "quorvel/abecs/crc16.h"
#include "tests/support/packets.h"
#include "tests/support/raised.h"

// What the handle keeps between exchanges, and the check of what they carry.
namespace {

using namespace support;

constexpr uint8_t kKey[16] = {0x10, 0x21, 0x32, 0x43, 0x54, 0x65, 0x76, 0x87,
                              0x98, 0xA9, 0xBA, 0xCB, 0xDC, 0xED, 0xFE, 0x0F};
constexpr AbecsWkPan kWkPan{ABECS_WK_PAN_TYPE_TDES_RSA, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};

TEST(BlockedState, LastsFromLockToReleaseAndIsToldBeforeABadId) {
    AbecsComm comm{};
    EXPECT_NO_RAISE(abecs_comm_lock(&comm, "123456789012"));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(&comm), "123456789012");
    const char* detail = "Connection is blocked waiting for 123456789012 response";
    EXPECT_RAISES(kState, detail, abecs_comm_check_busy(&comm));
    EXPECT_RAISES(kState, detail, abecs_comm_lock(&comm, nullptr));
    EXPECT_NO_RAISE(abecs_comm_release(&comm));
    EXPECT_RAISES(kArgument, "NULL/empty 'cmdId'", abecs_comm_lock(&comm, nullptr));
    EXPECT_RAISES(kArgument, "NULL/empty 'cmdId'", abecs_comm_lock(&comm, ""));
    EXPECT_RAISES(kArgument, "'cmdId' is too long: 1234567890123", abecs_comm_lock(&comm, "1234567890123"));
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
    const auto reads = [](const char* bytes, size_t room, int16_t code, const char* copied) {
        const Packet packet(bytes);
        char id[4] = "";
        const char* returned = nullptr;
        EXPECT_EQ(raised_by([&] { returned = abecs_comm_get_cmd_id(packet, id, room); }).code, code);
        EXPECT_STREQ(returned, copied);
        EXPECT_EQ(packet.take(), bytes);
    };
    reads("GIN00200", 4, KOR_RESULT_OK, "GIN");
    reads("GI", 4, kIo, nullptr);
    reads("G\x01N000", 4, kIo, nullptr);
    reads("GIN000", 3, kArgument, nullptr);
}

TEST(Crc16, OfKnownTextsInOneGoAndInTwo) {
    std::string every(256, '\0');
    std::iota(every.begin(), every.end(), '\0');
    const std::pair<std::string, uint16_t> rows[] = {
        {"", 0x0000}, {"123456789", 0x31C3}, {"OPN000", 0x8084}, {every, 0x7E55}};
    for (const auto& [text, expected] : rows) {
        for (const size_t first : {size_t{0}, text.size() / 2}) {
            uint16_t crc = 0;
            abecs_crc16(text.data(), first, &crc);
            abecs_crc16(text.data() + first, text.size() - first, &crc);
            EXPECT_EQ(crc, expected) << text;
        }
    }
    uint16_t crc = 7;
    EXPECT_NO_RAISE(abecs_crc16(nullptr, 0, &crc));
    EXPECT_RAISES(kArgument, "'data' is NULL", abecs_crc16(nullptr, 1, &crc));
    EXPECT_RAISES(kArgument, "'crc' is NULL", abecs_crc16("1", 1, nullptr));
    EXPECT_EQ(crc, 7);
}

// The four ways in which the link and the encrypted session use it.
TEST(PacketCrc16, CoversTheUnreadBytesBetweenPrefixAndSuffix) {
    const uint8_t dc2 = 0x12;
    const uint8_t etb = 0x17;
    const std::tuple<const uint8_t*, const uint8_t*, uint16_t> rows[] = {
        {nullptr, nullptr, 0x8084}, {nullptr, &etb, 0x775E}, {&dc2, nullptr, 0xD71C}, {&dc2, &etb, 0xC54C}};
    const Packet packet(".OPN000");
    abecs_packet_read_byte(packet);
    for (const auto& [prefix, suffix, crc] : rows) { EXPECT_EQ(abecs_comm_crc16(packet, prefix, suffix), crc); }
    EXPECT_EQ(packet.take(), "OPN000");
}

}  // namespace
