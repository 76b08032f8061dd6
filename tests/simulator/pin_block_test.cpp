// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/keys/pin_block.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "wire/hex.h"

namespace quorvel::sim {

namespace {

struct Clear {
    std::string pin;
    std::string pan;
    std::string block;
};

const std::vector<Clear> clearBlocks{
    {"1234", "4012345678909", "041274EDCBA9876F"},
    {"1234", "43219876543210987", "0412AC89ABCDEF67"},
    {"12345", "4111111111111111", "0512254EEEEEEEEE"},
    {"123456789012", "4111111111111111", "0C122547698103EE"},
    {"1234", "", "041234FFFFFFFFFF"},
    {"1234", "19", "041234FFFFFFFFFE"},
};

TEST(PinBlock, IsOfFormat0) {
    for (const auto& [pin, pan, block] : clearBlocks) EXPECT_EQ(to_hex(pin_block(pin, pan)), block) << pin << pan;
    for (const char* pin : {"", "123", "1234567890123"}) {
        EXPECT_THROW(static_cast<void>(pin_block(pin, "4111111111111111")), std::invalid_argument);
    }
}

struct Enciphered {
    PinKey key;
    std::string block;
    std::string ksn;
};

// Each row works on the store that the rows before have left.
const std::vector<Enciphered> enciphered{
    {{0, 0, from_hex("B4CC3FD9D8D95214")}, "755F4EB3D12E852B", "00000000000000000000"},
    {{1, 0, from_hex("3EB3B72576BBBE834F0B96AAA5A8B548")}, "D72AB8A566AF6DBA", "00000000000000000000"},
    {{2, 0}, "AE03BBC9A095DEFE", "FFFF9876543210E00001"},
    {{3, 0}, "1B9C1845EB993A7A", "FFFF9876543210E00001"},
    {{3, 0}, "10A01C8D02C69107", "FFFF9876543210E00002"},
    {{2, 0}, "8C753F84AA082CAA", "FFFF9876543210E00002"},
};

TEST(PinBlock, IsEncipheredUnderEachKindOfKey) {
    KeyStore keys = KeyStore::standard();
    for (const auto& [key, block, ksn] : enciphered) {
        const auto pin = encipher_pin(keys, key, "4012345678909", "1234");
        ASSERT_TRUE(pin) << key.method;
        EXPECT_EQ(to_hex(pin->block), block);
        EXPECT_EQ(to_hex(pin->ksn), ksn);
    }
    for (const int method : {0, 1, 2, 3}) EXPECT_FALSE(encipher_pin(keys, {method, 99, Bytes(16)}, "", "1234"));
}

}  // namespace

}  // namespace quorvel::sim
