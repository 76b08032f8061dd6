// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/crc16.h"

#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <tuple>
#include <utility>

#include "quorvel/abecs/comm.h"
#include "tests/support/packets.h"
#include "tests/support/raised.h"

namespace {

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
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'data' is NULL", abecs_crc16(nullptr, 1, &crc));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'crc' is NULL", abecs_crc16("1", 1, nullptr));
    EXPECT_EQ(crc, 7);
}

// The four ways in which the link and the encrypted session use it.
TEST(PacketCrc16, CoversTheUnreadBytesBetweenPrefixAndSuffix) {
    const uint8_t dc2 = 0x12;
    const uint8_t etb = 0x17;
    const std::tuple<const uint8_t*, const uint8_t*, uint16_t> rows[] = {
        {nullptr, nullptr, 0x8084}, {nullptr, &etb, 0x775E}, {&dc2, nullptr, 0xD71C}, {&dc2, &etb, 0xC54C}};
    const support::Packet packet(".OPN000");
    abecs_packet_read_byte(packet);
    for (const auto& [prefix, suffix, crc] : rows) { EXPECT_EQ(abecs_comm_crc16(packet, prefix, suffix), crc); }
    EXPECT_EQ(packet.take(), "OPN000");
}

}  // namespace
