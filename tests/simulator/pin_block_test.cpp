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

}  // namespace

}  // namespace quorvel::sim
