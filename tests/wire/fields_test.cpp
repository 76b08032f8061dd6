// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/fields.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/support/wire.h"
#include "wire/tlv.h"

using namespace std::string_literals;
using namespace support::literals;

using namespace quorvel::wire;

namespace {

TEST(Reader, TellsWhatIsWrongWithWhichField) {
    const std::tuple<std::string, std::function<void(Reader&)>, std::string> cases[]{
        {"A\x7F", [](Reader& r) { static_cast<void>(r.a("F", 2)); }, "F: 0x7F is not allowed"},
        {"A\n", [](Reader& r) { static_cast<void>(r.s("F", 2, Cr::kAllowed)); }, "F: 0x0A is not allowed"},
        {"aB", [](Reader& r) { static_cast<void>(r.h("F", 2)); }, "F: 0x61 is no hexadecimal digit"},
        {"ABC", [](Reader& r) { static_cast<void>(r.h("F", 3)); }, "F: an odd number of hexadecimal digits"},
    };
    for (const auto& [bytes, read, fault] : cases) {
        const Bytes owned = to_bytes(bytes);
        Reader reader("CMD", owned);
        try {
            read(reader);
            ADD_FAILURE() << fault;
        } catch (const LayoutError& error) { EXPECT_EQ(error.what(), "CMD: " + fault); }
    }
}

TEST(Reader, ReadsEachKindOfField) {
    const Bytes bytes = to_bytes("0420AB  \xC9\r 30ab3041\x12\x34\x56\x78");
    Reader reader("CMD", bytes);
    EXPECT_EQ(reader.n("N", 4), 420U);
    EXPECT_EQ(reader.a("A", 4), "AB");
    EXPECT_EQ(reader.s("S", 3, Cr::kAllowed), "\xC9\r");
    EXPECT_EQ(reader.b("B", 4), to_bytes("30ab"));
    EXPECT_EQ(reader.h("H", 4), to_bytes("0A"));
    EXPECT_EQ(reader.x("X", 2), 0x1234U);
    EXPECT_EQ(reader.x("X", 1), 0x56U);
    EXPECT_EQ(reader.left(), 1U);
}

TEST(Reader, GathersParametersFromBothBlocks) {
    const Bytes bytes = to_bytes(
        "009\x00\x01\x00\x01"
        "A\x00\x02\x00\x00"
        "006\x00\x01\x00\x02"
        "BC"s);
    const std::vector<Param> due{{1, to_bytes("A")}, {2, {}}, {1, to_bytes("BC")}};
    EXPECT_EQ(Reader("CMD", bytes).params(), due);
}

TEST(Writer, LaysOutEachKindOfField) {
    const Bytes hexed{0x01, 0xAB};
    Writer writer;
    writer.n(7, 3).a("AB", 4).s("\xC9", 2).h(hexed, 8).x(0x1234, 2).param({0x8001, to_bytes("Z")});
    EXPECT_EQ(writer.bytes(), to_bytes("007AB  \xC9 303001AB\x12\x34\x80\x01\x00\x01Z"s));
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
