// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "abecs/data/field_h.h"
#include "quorvel/abecs/data.h"
#include "tests/abecs/data/bytes.h"
#include "tests/support/raised.h"

using namespace std::string_literals;
using namespace support;

namespace {

TEST(FieldN, IsZeroPaddedAndAtMostThirteenDigits) {
    const Bytes bytes;
    abecs_data_write_field_n(bytes, 0, 3);
    abecs_data_write_field_n(bytes, 12, 2);
    abecs_data_write_field_n(bytes, 9999999999999, 13);
    abecs_data_write_field_n(bytes, 0, 13);
    EXPECT_EQ(bytes.take(), "0001299999999999990000000000000");
    const Bytes fields("001200000000000009999999999999");
    EXPECT_EQ(abecs_data_read_field_n(fields, 4), 12U);
    EXPECT_EQ(abecs_data_read_field_n(fields, 0), 0U);
    EXPECT_EQ(abecs_data_read_field_n(fields, 13), 0U);
    EXPECT_EQ(abecs_data_read_field_n(fields, 13), 9999999999999U);
}

using TextWriter = void (*)(KorBuffer*, const char*, size_t, bool);
using TextReader = char* (*)(KorBuffer*, char*, size_t, size_t, bool);

template <auto kWriteCdata>
void write_one(KorBuffer* buffer, const char* data, size_t fieldLen, bool allowCr) {
    kWriteCdata(buffer, data, 1, fieldLen, allowCr);
}

struct TextType {
    TextWriter write;
    TextWriter writeCdata;
    TextReader read;
    unsigned highest;
};

const TextType kTextTypes[] = {
    {abecs_data_write_field_a, write_one<abecs_data_write_field_a_cdata>, abecs_data_read_field_a, 0x7E},
    {abecs_data_write_field_s, write_one<abecs_data_write_field_s_cdata>, abecs_data_read_field_s, 0xFF}};

class FieldText : public testing::TestWithParam<TextType> {};

INSTANTIATE_TEST_SUITE_P(AAndS, FieldText, testing::ValuesIn(kTextTypes));

TEST_P(FieldText, IsWrittenAsFarAsThereIsRoom) {
    KorBuffer* narrow = kor_buffer_new(3);
    EXPECT_RAISES(kIo, "No enough space in buffer (available: 0, requested: 1)",
                  GetParam().write(narrow, "ABCDE", 5, false));
    char written[4] = "";
    EXPECT_EQ(kor_buffer_read(narrow, written, 3), 3U);
    EXPECT_STREQ(written, "ABC");
    kor_buffer_delete(&narrow);
}

TEST_P(FieldText, IsPaddedWithBlanksThatReadingDrops) {
    const Bytes bytes;
    GetParam().write(bytes, "AB", 5, false);
    GetParam().writeCdata(bytes, "  C\r", 5, true);
    GetParam().write(bytes, "", 3, false);
    EXPECT_EQ(bytes.take(), "AB     C\r    ");
    const Bytes fields("AB     C\r    ");
    char text[6] = "?????";
    EXPECT_STREQ(GetParam().read(fields, text, sizeof text, 5, false), "AB");
    EXPECT_STREQ(GetParam().read(fields, text, sizeof text, 5, true), "  C\r") << "only blanks are padding";
    EXPECT_EQ(GetParam().read(fields, text, 4, 3, false), text);
    EXPECT_STREQ(text, "");
}

TEST_P(FieldText, EveryCharacterIsAllowedOrRefusedAlikeBothWays) {
    const TextType type = GetParam();
    for (unsigned c = 1; c <= 0xFF; ++c) {
        for (const bool allowCr : {false, true}) {
            const char field[]{'a', static_cast<char>(c), 'z', '\0'};
            const bool good = c == '\r' ? allowCr : c >= 0x20 && c <= type.highest;
            char detail[64];
            std::snprintf(detail, sizeof detail, "Invalid character (0x%02X) at position 1", c);
            const Bytes out;
            const Bytes in(field);
            char text[4];
            if (good) {
                EXPECT_NO_RAISE(type.write(out, field, 3, allowCr));
                EXPECT_NO_RAISE(type.read(in, text, sizeof text, 3, allowCr));
                EXPECT_STREQ(text, field);
            } else {
                EXPECT_EQ(raised_by([&] { type.write(out, field, 3, allowCr); }), error(kArgument, detail));
                EXPECT_RAISES(kIo, detail, type.read(in, text, sizeof text, 3, allowCr));
                EXPECT_STREQ(text, field) << "as received";
            }
            EXPECT_EQ(out.take(), good ? field : "a");
            EXPECT_EQ(in.take(), "") << "the field is consumed either way";
        }
    }
}

// As a caller's own declaration may have it, in a language that has no bool.
TEST_P(FieldText, EveryNumberButZeroAllowsCr) {
    using Writer = void (*)(KorBuffer*, const char*, size_t, int);
    using Reader = char* (*)(KorBuffer*, char*, size_t, size_t, int);
    const auto write = reinterpret_cast<Writer>(reinterpret_cast<void (*)()>(GetParam().write));
    const auto read = reinterpret_cast<Reader>(reinterpret_cast<void (*)()>(GetParam().read));
    const Bytes bytes;
    char text[4];
    EXPECT_NO_RAISE(write(bytes, "a\rz", 3, 2));
    EXPECT_NO_RAISE(read(bytes, text, sizeof text, 3, 2));
    EXPECT_STREQ(text, "a\rz");
}

TEST(FieldH, IsPaddedWithPairsThirty) {
    const Bytes bytes;
    const uint8_t two[]{0x30, 0xAB};
    abecs_data_write_field_h_raw(bytes, two, 2, 8);
    abecs_data_write_field_h_raw(bytes, nullptr, 0, 4);
    abecs_data_write_field_h(bytes, "aBc9", 6);
    abecs_data_write_field_h_cdata(bytes, "00ffxx", 4, 4);
    abecs_data_write_field_h_cdata(bytes, "12", 40, 2);
    EXPECT_EQ(bytes.take(), "303030AB303030ABC900FF12");
}

TEST(FieldH, ReadingDropsLeadingPairsThirty) {
    const std::tuple<std::string, const char*, std::vector<uint8_t>> cases[]{
        {"303030AB", "AB", {0xAB}},
        {"30AB3030", "AB3030", {0xAB, 0x30, 0x30}},
        {"303030", "", {}},
        {"00fF30", "00fF30", {0x00, 0xFF, 0x30}},
        {"", "", {}},
    };
    for (const auto& [field, digits, expected] : cases) {
        SCOPED_TRACE(field);
        const size_t length = field.size();
        const Bytes bytes(field + field + field + field);
        char text[9] = "????????";
        uint8_t raw[4]{};
        EXPECT_STREQ(abecs_data_read_field_h(bytes, text, length + 1, length), digits);
        const size_t count = abecs_data_read_field_h_raw(bytes, raw, length / 2, length);
        EXPECT_EQ(std::vector<uint8_t>(raw, raw + count), expected);
        EXPECT_EQ(abecs_data_read_field_h_raw(bytes, nullptr, 0, length), expected.size());
        EXPECT_EQ(abecs_data_read_field_h(bytes, nullptr, 0, length), nullptr);
    }
    const Bytes exact("3030AB30");
    uint8_t raw[4]{};
    EXPECT_EQ(abecs::read_field_h_bytes(exact, raw, sizeof raw, 8), 4U) << "keeps what looks like padding";
    EXPECT_EQ(std::vector<uint8_t>(raw, raw + 4), (std::vector<uint8_t>{0x30, 0x30, 0xAB, 0x30}));
}

TEST(FieldH, AnythingButPairsOfHexadecimalDigitsIsRefused) {
    for (const char* pair : {"G0", "0G", "+1", " 1", "0x", "1 ", "@A", "`a", "/0", ":0"}) {
        SCOPED_TRACE(pair);
        const std::string field = "30AB" + std::string(pair) + "CD";
        const Bytes text(field + "rest");
        const Bytes raw(field + field + "rest");
        char to[9];
        std::fill(std::begin(to), std::end(to), 'x');
        EXPECT_RAISES(kIo, "Invalid data: " + std::string(pair), abecs_data_read_field_h(text, to, sizeof to, 8));
        EXPECT_STREQ(to, "") << "no pairs without an end";
        EXPECT_RAISES(kIo, "Invalid data: " + std::string(pair), abecs_data_read_field_h_raw(raw, nullptr, 0, 8));
        EXPECT_RAISES(kIo, "Invalid data: " + std::string(pair), abecs_data_read_field_h(raw, nullptr, 0, 8));
        EXPECT_EQ(text.take(), "rest");
        EXPECT_EQ(raw.take(), "rest");
        const Bytes out;
        EXPECT_RAISES(kArgument, "Invalid hex byte at index 4", abecs_data_write_field_h(out, field.c_str(), 10));
        EXPECT_EQ(out.take(), "") << "the padding must not precede a bad text";
    }
}

TEST(FieldX, IsBigEndianOfOneTwoOrFourBytes) {
    constexpr std::pair<uint32_t, size_t> kNumbers[]{{0xFF, 1}, {0x9234, 2}, {0xFEDCBA98, 4}};
    const Bytes bytes;
    for (const auto& [number, width] : kNumbers) { abecs_data_write_field_x(bytes, number, width); }
    EXPECT_EQ(bytes.take(), "\xFF\x92\x34\xFE\xDC\xBA\x98");
    const Bytes fields("\xFF\x92\x34\xFE\xDC\xBA\x98");
    for (const auto& [number, width] : kNumbers) { EXPECT_EQ(abecs_data_read_field_x(fields, width), number); }
}

char text[5];
uint8_t raw[4];

// What a buffer holds, and what a call leaves of it that raises: everything, unless it has consumed its field.
struct Content {
    Content(const std::string& all) : bytes(all), left(all) {}
    Content(const char* all) : bytes(all), left(all) {}
    Content(std::string all, const char* rest) : bytes(std::move(all)), left(rest) {}
    std::string bytes, left;
};

// Of an argument, when it is no more than a text.
struct Fault : Raised {
    Fault(const char* detail) : Raised(error(kArgument, detail)) {}
    Fault(const Raised& other) : Raised(other) {}
};

// Seen with a handler that returns: the call raises once and leaves with a harmless result.
template <typename Result, typename... Parameters>
void refused(const Content& content, const Fault& fault, Result (*function)(KorBuffer*, Parameters...),
             std::type_identity_t<Parameters>... arguments) {
    const Bytes bytes(content.bytes);
    const ReturningRaises raises;
    if constexpr (std::is_void_v<Result>) {
        function(bytes, arguments...);
    } else if constexpr (std::is_pointer_v<Result>) {
        EXPECT_STREQ(function(bytes, arguments...), "") << fault;
    } else {
        EXPECT_EQ(function(bytes, arguments...), 0U) << fault;
    }
    EXPECT_EQ(raises.all(), std::vector<Raised>{fault});
    EXPECT_EQ(bytes.take(), content.left) << fault;
}

TEST(Fields, RefuseWhatDoesNotFitInTheirOrder) {
    const auto writeN = abecs_data_write_field_n;
    const auto readN = abecs_data_read_field_n;
    refused("", "'i' (10000000000000) is too long (maximum: 9999999999999", writeN, 10000000000000, 13);
    refused("", "Number length (4) is greater than field length (3)", writeN, 1000, 3);
    refused("12", too_few(14, 2), readN, 14);
    refused("12345678901234", "field length (14) is too big (maximum: 13)", readN, 14);
    refused({"1\xE9rest", "est"}, error(kIo, "Invalid char (0xE9) at index 1"), readN, 3);
    for (const TextType& type : kTextTypes) {
        refused({"", "ABCDE"}, "Field does not have enough room for data", type.write, "ABCDE\x01", 5, false);
        refused("", "'data' is NULL", type.write, nullptr, 5, false);
        refused("abc", "sizeTo (4) is not enough to store field data", type.read, text, 4, 4, false);
        refused("abc", "sizeTo (0) is not enough to store field data", type.read, text, 0, 0, false);
        refused({"de\0f"s, ""}, error(kIo, "Invalid character (0x00) at position 2"), type.read, text, 5, 4, false);
        const Bytes skipped("a\x01");
        EXPECT_EQ(type.read(skipped, nullptr, 0, 2, false), nullptr) << "which is not checked";
        EXPECT_EQ(skipped.take(), "");
    }
    const auto writeH = abecs_data_write_field_h;
    const auto writeRaw = abecs_data_write_field_h_raw;
    const auto readH = abecs_data_read_field_h;
    const auto readRaw = abecs_data_read_field_h_raw;
    refused("", "fieldLen (5) is not even", writeH, "x", 5);
    refused("", "Field does not have enough room for data", writeH, "0102xx", 4);
    refused("", "'data' is NULL", writeH, nullptr, 4);
    refused("", "Invalid hex byte at index 2", abecs_data_write_field_h_cdata, "012", 3, 4);
    refused("", "'data' is NULL", writeRaw, nullptr, 1, 2);
    refused("", "fieldLen (7) must be even", writeRaw, raw, 4, 7);
    refused("", "fieldLen < (dataLen * 2) ==> (4 < (3 * 2))", writeRaw, raw, 3, 4);
    refused("30ABC", too_few(7, 5), readH, text, 4, 7);
    refused("30ABC", "fieldLen (5) is not an even number", readH, text, 4, 5);
    refused("30ABC", "sizeTo (4) is not enough to store field (length: 4)", readH, text, 4, 4);
    refused("30ABC", "sizeTo (0) is not enough to store field (length: 0)", readH, text, 0, 0);
    refused({"30XYrest", "rest"}, error(kIo, "Invalid data: XY"), readH, text, 5, 4);
    refused("30ABC", "fieldLen (5) must be even", readRaw, raw, 4, 5);
    refused("30ABC", "sizeTo (1) < (fieldLen / 2) (2)", readRaw, raw, 1, 4);

    const auto writeX = abecs_data_write_field_x;
    const char* const three = "Unsupported fieldLen: 3 (accepted values are 1, 2, or 4)";
    refused("", "fieldLen (2) is not enough for data (65536)", writeX, 65536, 2);
    refused("", three, writeX, 1, 3);
    refused("", "'data' is NULL", abecs_data_write_field_b, nullptr, 1);
    refused("abc", "Destination array does not have enough size to store all data (requested: 9, available: 4)",
            abecs_data_read_field_b, raw, 4, 9);
}

TEST(Fields, AFullBufferIsRaisedOnce) {
    const Bytes full("12345678", 8);
    const ReturningRaises raises;
    abecs_data_write_field_n(full, 7, 9);
    abecs_data_write_field_a(full, "long text", 12, false);
    abecs_data_write_field_h(full, "ABCD", 20);
    abecs_data_write_field_h_raw(full, raw, 0, 20);
    abecs_data_write_field_h(full, "ABCD", 4);
    abecs_data_write_field_h_raw(full, raw, 4, 8);
    abecs_data_write_field_x(full, 1, 4);
    abecs_data_write_field_b(full, "x", 1);
    ASSERT_EQ(raises.all().size(), 8U);
    EXPECT_EQ(raises.all()[1], too_full(1, 0));
}

}  // namespace
