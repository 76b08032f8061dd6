// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/endianness.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

// The value whose bytes in memory are those given, on whatever host this runs.
template <typename Integer, typename... Bytes>
Integer stored(Bytes... bytes) {
    const uint8_t memory[] = {static_cast<uint8_t>(bytes)...};
    static_assert(sizeof memory == sizeof(Integer));
    Integer value;
    std::memcpy(&value, memory, sizeof value);
    return value;
}

TEST(Endianness, ConvertsBetweenTheHostAndAFixedOrder) {
    EXPECT_EQ(kor_endianness_htobe16(0x1234), stored<uint16_t>(0x12, 0x34));
    EXPECT_EQ(kor_endianness_htole16(0x1234), stored<uint16_t>(0x34, 0x12));
    EXPECT_EQ(kor_endianness_be16toh(stored<uint16_t>(0x12, 0x34)), 0x1234);
    EXPECT_EQ(kor_endianness_le16toh(stored<uint16_t>(0x12, 0x34)), 0x3412);
    EXPECT_EQ(kor_endianness_htobe32(0x12345678), stored<uint32_t>(0x12, 0x34, 0x56, 0x78));
    EXPECT_EQ(kor_endianness_htole32(0x12345678), stored<uint32_t>(0x78, 0x56, 0x34, 0x12));
    EXPECT_EQ(kor_endianness_be32toh(stored<uint32_t>(0x12, 0x34, 0x56, 0x78)), 0x12345678U);
    EXPECT_EQ(kor_endianness_le32toh(stored<uint32_t>(0x12, 0x34, 0x56, 0x78)), 0x78563412U);
}

TEST(Endianness, KnowsTheOrderOfTheHost) {
    EXPECT_EQ(kor_endianness_host(), stored<uint16_t>(1, 0) == 1 ? KOR_ENDIANNESS_LITTLE : KOR_ENDIANNESS_BIG);
}

}  // namespace
