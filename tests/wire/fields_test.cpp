// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/fields.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/wire.h"
#include "wire/tlv.h"

using namespace std::string_literals;
using namespace support::literals;

using namespace quorvel::wire;

namespace {

TEST(Reader, GathersParametersFromBothBlocks) {
    const Bytes bytes = to_bytes(
        "009\x00\x01\x00\x01"
        "A\x00\x02\x00\x00"
        "006\x00\x01\x00\x02"
        "BC"s);
    const std::vector<Param> due{{1, to_bytes("A")}, {2, {}}, {1, to_bytes("BC")}};
    EXPECT_EQ(Reader("CMD", bytes).params(), due);
}

TEST(Writer, RefusesWhatDoesNotFit) {
    EXPECT_THROW(Writer().n(1000, 3), std::invalid_argument);
    EXPECT_THROW(Writer().a("ABC", 2), std::invalid_argument);
    EXPECT_THROW(Writer().a("\xC9", 2), std::invalid_argument);
    EXPECT_THROW(Writer().h(to_bytes("AB"), 2), std::invalid_argument);
    EXPECT_THROW(Writer().x(256, 1), std::invalid_argument);
    EXPECT_NO_THROW(Writer().x(0xFFFFFFFF, 4));
}

TEST(DataObjects, HaveLengthsOfAsManyBytesAsTheyNeed) {
    const std::pair<size_t, std::string> cases[]{
        {127, "5F34 7F"_hex}, {128, "5F34 8180"_hex}, {255, "5F34 81FF"_hex}, {256, "5F34 820100"_hex}};
    for (const auto& [size, head] : cases) {
        const DataObjects objects{{0x5F34, Bytes(size, 'x')}};
        const Bytes encoded = to_bytes(head + std::string(size, 'x'));
        EXPECT_EQ(encode(objects, {0x5F34}), encoded);
        EXPECT_EQ(decode(encoded), objects);
    }
}

}  // namespace
