// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/data.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <vector>

#include "tests/support/raised.h"

namespace {

using namespace support;

TEST(CheckNString, ReportsTheFirstFault) {
    const auto refused = [](const char* detail, const char* text) {
        EXPECT_RAISES(kArgument, detail, abecs_data_check_n_string(text, "pan", 5, 2));
    };
    refused("'pan' is NULL", nullptr);
    refused("'pan' is too long (maximum: 5, requested: 6)", "12345x");
    refused("'pan' is too short (minimum: 2, requested: 1)", "x");
    refused("pan: invalid char (0xE9) at index 1", "1\xE9");
    for (const char* text : {"09", "01239"}) { EXPECT_NO_RAISE(abecs_data_check_n_string(text, "pan", 5, 2)); }
    EXPECT_NO_RAISE(abecs_data_check_n_string("", "pan", 5, 0));
}

TEST(CharacterClasses, AreThoseOfAsciiAndReportTheFirstOther) {
    // The index stays as it was when there is no other character.
    constexpr size_t kNone = 77;
    const auto finds = [](auto isField, const char* text, size_t count, size_t expected) {
        size_t index = kNone;
        EXPECT_EQ(isField(text, count, &index), expected == kNone) << index;
        EXPECT_EQ(index, expected);
        EXPECT_EQ(isField(text, count, nullptr), expected == kNone) << index;
    };
    finds(abecs_data_is_numeric_field, "019x", 3, kNone);
    finds(abecs_data_is_numeric_field, "01a", 3, 2);
    finds(abecs_data_is_alphanumeric_field, "aZ9-", 3, kNone);
    finds(abecs_data_is_alphanumeric_field, "a b-", 4, 1);
    for (const auto isField : {abecs_data_is_numeric_field, abecs_data_is_alphanumeric_field}) {
        finds(isField, nullptr, 0, kNone);
        finds(isField, nullptr, 3, 0);
    }
}

TEST(Dates, EveryMonthEndsWhereItShould) {
    constexpr uint8_t kLengths[]{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (uint8_t month = 1; month <= 12; ++month) {
        for (const uint8_t year : {uint8_t{0}, uint8_t{23}, uint8_t{24}, uint8_t{99}}) {
            const auto last = static_cast<uint8_t>(kLengths[month - 1] + (month == 2 && (year == 0 || year == 24)));
            const AbecsDate good{year, month, last};
            EXPECT_NO_RAISE(abecs_data_validate_date(&good));
            const AbecsDate bad{year, month, static_cast<uint8_t>(last + 1)};
            char detail[64];
            std::snprintf(detail, sizeof detail, "Invalid date (YY-MM-DD): %02d-%02d-%02d", year, month, last + 1);
            EXPECT_RAISES(kArgument, detail, abecs_data_validate_date(&bad));
        }
    }
}

TEST(DatesAndTimes, FaultsComeInOrder) {
    const auto badDate = [](const char* detail, const AbecsDate& date) {
        EXPECT_RAISES(kArgument, detail, abecs_data_validate_date(&date));
    };
    const auto badTime = [](const char* detail, const AbecsTime& time) {
        EXPECT_RAISES(kArgument, detail, abecs_data_validate_time(&time));
    };
    badDate("Invalid year: 100", {100, 0, 0});
    badDate("Invalid month: 0", {99, 0, 0});
    badDate("Invalid date (YY-MM-DD): 05-06-00", {5, 6, 0});
    badTime("Invalid hours: 24", {24, 60, 60});
    badTime("Invalid minutes: 60", {23, 60, 60});
    badTime("Invalid seconds: 60", {0, 59, 60});
    const AbecsTime last{23, 59, 59};
    EXPECT_NO_RAISE(abecs_data_validate_time(&last));
}

TEST(Hex, ToHexWritesLowerCase) {
    const uint8_t data[]{0x00, 0xAF, 0x9C};
    char to[7];
    EXPECT_STREQ(abecs_data_to_hex(data, 3, to, sizeof to), "00af9c");
    EXPECT_STREQ(abecs_data_to_hex(nullptr, 0, to, 1), "");
    const char* room = "Destination buffer does not have enough room for encoded data";
    EXPECT_RAISES(kArgument, "'data' is NULL", abecs_data_to_hex(nullptr, 3, nullptr, 0));
    EXPECT_RAISES(kArgument, "'szData' is zero", abecs_data_to_hex(data, 0, nullptr, 0));
    EXPECT_RAISES(kArgument, "'to' is NULL", abecs_data_to_hex(data, 3, nullptr, 0));
    EXPECT_RAISES(kArgument, room, abecs_data_to_hex(data, 3, to, 6));
}

TEST(Hex, FromHexTakesEitherCaseAndDoesNotTerminate) {
    uint8_t out[4]{9, 9, 9, 9};
    EXPECT_EQ(abecs_data_from_hex("00aF9C", out, 3), out);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 4), (std::vector<uint8_t>{0x00, 0xAF, 0x9C, 9}));
    EXPECT_EQ(abecs_data_from_hex2("77zz", 2, out, 1), out);
    EXPECT_EQ(out[0], 0x77);
    EXPECT_EQ(abecs_data_from_hex(nullptr, out, 0), out) << "null is an empty text";
    const char* room = "Destination buffer does not have enough room for decoded data";
    EXPECT_RAISES(kArgument, "'hex' is NULL", abecs_data_from_hex2(nullptr, 2, nullptr, 0));
    EXPECT_RAISES(kArgument, "'szHex' is zero", abecs_data_from_hex2("12", 0, nullptr, 0));
    EXPECT_RAISES(kArgument, "'out' is NULL", abecs_data_from_hex("12", nullptr, 1));
    EXPECT_RAISES(kArgument, room, abecs_data_from_hex("12345", out, 1));
    EXPECT_RAISES(kArgument, "Invalid hex string", abecs_data_from_hex("+112", out, 4));
}

}  // namespace
