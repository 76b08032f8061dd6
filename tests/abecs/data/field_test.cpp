// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "abecs/data/field_h.h"
#include "quorvel/abecs/data.h"
#include "tests/abecs/data/bytes.h"
#include "tests/support/raised.h"

using namespace std::string_literals;
using support::Bytes;

namespace {

TEST(FieldN, IsZeroPaddedAndAtMostThirteenDigits) {
    const Bytes bytes;
    abecs_data_write_field_n(bytes, 0, 3);
    abecs_data_write_field_n(bytes, 42, 2);
    abecs_data_write_field_n(bytes, 9999999999999, 13);
    EXPECT_EQ(bytes.take(), "000429999999999999");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'i' (10000000000000) is too long (maximum: 9999999999999",
                  abecs_data_write_field_n(bytes, 10000000000000, 20));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Number length (4) is greater than field length (3)",
                  abecs_data_write_field_n(bytes, 1000, 3));
    EXPECT_EQ(bytes.take(), "");
}

TEST(FieldN, ReadsDigitsOnly) {
    const Bytes bytes(
        "00120000000000000"
        "9999999999999");
    EXPECT_EQ(abecs_data_read_field_n(bytes, 4), 12U);
    EXPECT_EQ(abecs_data_read_field_n(bytes, 0), 0U);
    EXPECT_EQ(abecs_data_read_field_n(bytes, 13), 0U);
    EXPECT_EQ(abecs_data_read_field_n(bytes, 13), 9999999999999U);
    const Bytes bad(
        "1\xE9"
        "4rest");
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Invalid char (0xE9) at index 1", abecs_data_read_field_n(bad, 3));
    EXPECT_EQ(bad.take(), "rest") << "the bad field is consumed";
}

TEST(FieldN, ChecksForDataBeforeTheLimit) {
    const Bytes bytes("12");
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Buffer does not have enough data (requested: 14, available: 2)",
                  abecs_data_read_field_n(bytes, 14));
    const Bytes enough("12345678901234");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "field length (14) is too big (maximum: 13)",
                  abecs_data_read_field_n(enough, 14));
    EXPECT_EQ(enough.take(), "12345678901234");
}

TEST(FieldRspStat, OnlyWireStatusesPass) {
    const std::vector<int32_t> known{0,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 19,  20,  21,
                                     40, 41, 42, 43, 44, 45, 46, 51, 60, 61, 67, 68, 69,  70,  71,
                                     76, 77, 78, 79, 80, 81, 82, 83, 84, 85, 86, 87, 100, 101, 102};
    for (int32_t stat = 0; stat < 1000; ++stat) {
        char digits[5];
        std::snprintf(digits, sizeof digits, "%03d!", stat);
        const Bytes bytes(digits);
        if (std::find(known.begin(), known.end(), stat) != known.end()) {
            EXPECT_EQ(abecs_data_read_rsp_stat(bytes), stat);
        } else {
            EXPECT_RAISES(KOR_RESULT_PROTOCOL_ERROR, "Unknown value for RSP_STAT: " + std::string(digits, 3),
                          abecs_data_read_rsp_stat(bytes));
        }
        EXPECT_EQ(bytes.take(), "!") << digits;
    }
}

using TextWriter = void (*)(KorBuffer*, const char*, size_t, bool);
using TextReader = char* (*)(KorBuffer*, char*, size_t, size_t, bool);

void write_a_cdata(KorBuffer* buffer, const char* data, size_t fieldLen, bool allowCr) {
    abecs_data_write_field_a_cdata(buffer, data, 1, fieldLen, allowCr);
}

void write_s_cdata(KorBuffer* buffer, const char* data, size_t fieldLen, bool allowCr) {
    abecs_data_write_field_s_cdata(buffer, data, 1, fieldLen, allowCr);
}

struct TextType {
    TextWriter write;
    TextWriter writeCdata;
    TextReader read;
    unsigned highest;
};

class FieldText : public testing::TestWithParam<TextType> {};

INSTANTIATE_TEST_SUITE_P(A, FieldText,
                         testing::Values(TextType{abecs_data_write_field_a, write_a_cdata, abecs_data_read_field_a,
                                                  0x7E}));
INSTANTIATE_TEST_SUITE_P(S, FieldText,
                         testing::Values(TextType{abecs_data_write_field_s, write_s_cdata, abecs_data_read_field_s,
                                                  0xFF}));

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
                EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, detail, type.write(out, field, 3, allowCr));
                EXPECT_RAISES(KOR_RESULT_IO_ERROR, detail, type.read(in, text, sizeof text, 3, allowCr));
            }
            EXPECT_EQ(out.take(), good ? field : "a");
            EXPECT_EQ(in.take(), "") << "the field is consumed either way";
        }
    }
}

TEST_P(FieldText, RoomIsTestedBeforeTheCharacter) {
    const Bytes bytes;
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Field does not have enough room for data",
                  GetParam().write(bytes, "ABCDE\x01", 5, false));
    EXPECT_EQ(bytes.take(), "ABCDE");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'data' is NULL", GetParam().write(bytes, nullptr, 5, false));
    const Bytes tiny("", 3);
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "No enough space in buffer (available: 0, requested: 1)",
                  GetParam().write(tiny, "AB", 5, false));
}

TEST_P(FieldText, ChecksTheDestinationBeforeTheData) {
    const Bytes bytes("abc");
    char text[4];
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "sizeTo (4) is not enough to store field data",
                  GetParam().read(bytes, text, sizeof text, 4, false));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Buffer does not have enough data (requested: 4, available: 3)",
                  GetParam().read(bytes, nullptr, 0, 4, false));
    EXPECT_EQ(bytes.take(), "abc");
}

TEST_P(FieldText, NullDestinationSkipsUnchecked) {
    const Bytes bytes(
        "\x01\x02"
        "abc");
    EXPECT_EQ(GetParam().read(bytes, nullptr, 0, 2, false), nullptr);
    EXPECT_EQ(bytes.take(), "abc");
}

TEST_P(FieldText, NulInsideTheFieldIsABadCharacter) {
    const Bytes bytes("ab\0d"s);
    char text[5];
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Invalid character (0x00) at position 2",
                  GetParam().read(bytes, text, sizeof text, 4, false));
}

TEST(FieldH, IsPaddedWithPairsThirty) {
    const Bytes bytes;
    const uint8_t one[]{0xAB};
    const uint8_t two[]{0x30, 0xAB};
    abecs_data_write_field_h_raw(bytes, one, 1, 8);
    EXPECT_EQ(bytes.take(), "303030AB");
    abecs_data_write_field_h_raw(bytes, two, 2, 8);
    EXPECT_EQ(bytes.take(), "303030AB");
    abecs_data_write_field_h_raw(bytes, nullptr, 0, 4);
    abecs_data_write_field_h(bytes, "aBc9", 6);
    abecs_data_write_field_h_cdata(bytes, "00ffxx", 4, 4);
    abecs_data_write_field_h_cdata(bytes, "12", 40, 2);
    EXPECT_EQ(bytes.take(), "303030ABC900FF12");
}

TEST(FieldH, ReadingDropsLeadingPairsThirty) {
    struct Case {
        const char* field;
        const char* text;
        std::vector<uint8_t> bytes;
    };
    const Case cases[]{
        {"303030AB", "AB", {0xAB}},
        {"30AB3030", "AB3030", {0xAB, 0x30, 0x30}},
        {"303030", "", {}},
        {"00fF30", "00fF30", {0x00, 0xFF, 0x30}},
        {"", "", {}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.field);
        const size_t length = std::string(each.field).size();
        const Bytes forText(each.field);
        const Bytes forBytes(each.field);
        const Bytes forCount(each.field);
        char text[9] = "????????";
        uint8_t raw[4]{};
        EXPECT_STREQ(abecs_data_read_field_h(forText, text, length + 1, length), each.text);
        const size_t count = abecs_data_read_field_h_raw(forBytes, raw, length / 2, length);
        EXPECT_EQ(std::vector<uint8_t>(raw, raw + count), each.bytes);
        EXPECT_EQ(abecs_data_read_field_h_raw(forCount, nullptr, 0, length), each.bytes.size());
    }
}

TEST(FieldH, ExactBytesKeepWhatLooksLikePadding) {
    const Bytes bytes("3030AB30");
    uint8_t raw[4]{};
    EXPECT_EQ(abecs::read_field_h_bytes(bytes, raw, sizeof raw, 8), 4U);
    EXPECT_EQ(std::vector<uint8_t>(raw, raw + 4), (std::vector<uint8_t>{0x30, 0x30, 0xAB, 0x30}));
    const Bytes bad("30G0");
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Invalid data: G0", abecs::read_field_h_bytes(bad, raw, sizeof raw, 4));
    const Bytes small("3031");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "sizeTo (1) < (fieldLen / 2) (2)",
                  abecs::read_field_h_bytes(small, raw, 1, 4));
}

TEST(FieldH, AnythingButPairsOfHexadecimalDigitsIsRefused) {
    for (const char* pair : {"G0", "0G", "+1", " 1", "0x", "1 ", "@A", "`a", "/0", ":0"}) {
        SCOPED_TRACE(pair);
        const std::string field = "30AB" + std::string(pair) + "CD";
        const Bytes text(field + "rest");
        const Bytes raw(field + "rest");
        char to[9];
        EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Invalid data: " + std::string(pair),
                      abecs_data_read_field_h(text, to, sizeof to, 8));
        EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Invalid data: " + std::string(pair),
                      abecs_data_read_field_h_raw(raw, nullptr, 0, 8));
        EXPECT_EQ(text.take(), "rest");
        EXPECT_EQ(raw.take(), "rest");
        const Bytes out;
        EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid hex byte at index 4",
                      abecs_data_write_field_h(out, field.c_str(), 10));
        EXPECT_EQ(out.take(), "") << "the padding must not precede a bad text";
    }
}

TEST(FieldH, WritersCheckParityRoomAndPairs) {
    const Bytes bytes;
    const uint8_t data[]{1, 2, 3};
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "fieldLen (5) is not even", abecs_data_write_field_h(bytes, "x", 5));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Field does not have enough room for data",
                  abecs_data_write_field_h(bytes, "0102xx", 4));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid hex byte at index 2",
                  abecs_data_write_field_h(bytes, "012", 4));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid hex byte at index 2",
                  abecs_data_write_field_h_cdata(bytes, "0123", 3, 4));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'data' is NULL", abecs_data_write_field_h(bytes, nullptr, 4));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "fieldLen (7) must be even",
                  abecs_data_write_field_h_raw(bytes, data, 3, 7));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "fieldLen < (dataLen * 2) ==> (4 < (3 * 2))",
                  abecs_data_write_field_h_raw(bytes, data, 3, 4));
    EXPECT_EQ(bytes.take(), "");
}

TEST(FieldH, ReadersCheckDataThenParityThenRoom) {
    const Bytes bytes("30ABC");
    char text[4];
    uint8_t raw[1];
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Buffer does not have enough data (requested: 7, available: 5)",
                  abecs_data_read_field_h(bytes, text, sizeof text, 7));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "fieldLen (5) is not an even number",
                  abecs_data_read_field_h(bytes, text, sizeof text, 5));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "sizeTo (4) is not enough to store field (length: 4)",
                  abecs_data_read_field_h(bytes, text, sizeof text, 4));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Buffer does not have enough data (requested: 7, available: 5)",
                  abecs_data_read_field_h_raw(bytes, raw, sizeof raw, 7));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "fieldLen (5) must be even",
                  abecs_data_read_field_h_raw(bytes, raw, sizeof raw, 5));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "sizeTo (1) < (fieldLen / 2) (2)",
                  abecs_data_read_field_h_raw(bytes, raw, sizeof raw, 4));
    EXPECT_EQ(bytes.take(), "30ABC");
}

TEST(FieldX, IsBigEndianOfOneTwoOrFourBytes) {
    const Bytes bytes;
    abecs_data_write_field_x(bytes, 0xFF, 1);
    abecs_data_write_field_x(bytes, 0x1234, 2);
    abecs_data_write_field_x(bytes, 0xFEDCBA98, 4);
    EXPECT_EQ(bytes.take(), "\xFF\x12\x34\xFE\xDC\xBA\x98");
    const Bytes fields("\xFF\x12\x34\xFE\xDC\xBA\x98");
    EXPECT_EQ(abecs_data_read_field_x(fields, 1), 0xFFU);
    EXPECT_EQ(abecs_data_read_field_x(fields, 2), 0x1234U);
    EXPECT_EQ(abecs_data_read_field_x(fields, 4), 0xFEDCBA98U);
}

TEST(FieldX, RefusesOtherLengthsAndValuesThatDoNotFit) {
    const Bytes bytes("a");
    const char* unsupported = "Unsupported fieldLen: 3 (accepted values are 1, 2, or 4)";
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "fieldLen (1) is not enough for data (256)",
                  abecs_data_write_field_x(bytes, 256, 1));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "fieldLen (2) is not enough for data (65536)",
                  abecs_data_write_field_x(bytes, 65536, 2));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, unsupported, abecs_data_write_field_x(bytes, 1, 3));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, unsupported, abecs_data_read_field_x(bytes, 3));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Buffer does not have enough data (requested: 4, available: 1)",
                  abecs_data_read_field_x(bytes, 4));
    EXPECT_EQ(bytes.take(), "a");
}

TEST(FieldB, CopiesBytesAndChecksTheDestinationFirst) {
    const Bytes bytes;
    abecs_data_write_field_b(bytes, "\0\xFF\x16", 3);
    EXPECT_EQ(bytes.take(), "\0\xFF\x16"s);
    const Bytes fields("abcdef");
    char to[4];
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT,
                  "Destination array does not have enough size to store all data (requested: 9, available: 4)",
                  abecs_data_read_field_b(fields, to, sizeof to, 9));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Buffer does not have enough data (requested: 9, available: 6)",
                  abecs_data_read_field_b(fields, nullptr, 0, 9));
    EXPECT_EQ(abecs_data_read_field_b(fields, nullptr, 0, 2), 2U) << "skips";
    EXPECT_EQ(abecs_data_read_field_b(fields, to, sizeof to, 4), 4U);
    EXPECT_EQ(std::string(to, 4), "cdef");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'data' is NULL", abecs_data_write_field_b(bytes, nullptr, 1));
}

// With a handler that returns, each call raises once and leaves with a harmless result.
TEST(Fields, SurvivesRaisesThatReturn) {
    const Bytes full("12345678", 8);
    const Bytes shortOfData("1");
    const Bytes none;
    char text[4] = "old";
    uint8_t raw[2];
    const support::ReturningRaises raises;
    abecs_data_write_field_n(full, 7, 9);
    abecs_data_write_field_a(full, "long text", 12, false);
    abecs_data_write_field_h(full, "ABCD", 20);
    abecs_data_write_field_h_raw(full, raw, 0, 20);
    abecs_data_write_field_x(full, 1, 4);
    abecs_data_write_field_b(full, "x", 1);
    EXPECT_EQ(raises.all().size(), 6U);
    EXPECT_EQ(abecs_data_read_field_n(shortOfData, 2), 0U);
    EXPECT_NE(abecs_data_read_rsp_stat(shortOfData), 0) << "must not look like success";
    EXPECT_STREQ(abecs_data_read_field_a(shortOfData, text, sizeof text, 2, false), "");
    EXPECT_STREQ(abecs_data_read_field_h(shortOfData, text, sizeof text, 2), "");
    EXPECT_EQ(abecs_data_read_field_h_raw(shortOfData, raw, sizeof raw, 2), 0U);
    EXPECT_EQ(abecs_data_read_field_x(shortOfData, 2), 0U);
    EXPECT_EQ(abecs_data_read_field_b(shortOfData, raw, sizeof raw, 2), 0U);
    abecs_data_write_field_n(nullptr, 1, 3);
    EXPECT_EQ(raises.all().size(), 14U);
    EXPECT_EQ(abecs_data_read_field_b(nullptr, raw, sizeof raw, 0), 0U);
}

}  // namespace
