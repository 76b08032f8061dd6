// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/string.h"

#include <array>
#include <cstdarg>
#include <cstring>
#include <tuple>

#include "quorvel/kor/heap.h"
#include "tests/support/raised.h"

namespace {

KOR_PRINTF(3, 4) int32_t vformat(char* to, size_t size, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int32_t length = kor_string_vformat(to, size, format, arguments);
    va_end(arguments);
    return length;
}

TEST(StringFormat, CutsAndTerminates) {
    char to[9] = "........";
    // As a caller sees them whose compiler does not check formats.
    char* (*const unchecked)(char*, size_t, const char*, ...) = kor_string_format;
    int32_t (*const uncheckedList)(char*, size_t, const char*, ...) = vformat;
    EXPECT_EQ(kor_string_format(to, 8, "%s", "abcdefghijklmnopqrst"), to);
    EXPECT_STREQ(to, "abcdefg");
    EXPECT_EQ(vformat(to, 8, "%s", "abcdefghijklmnopqrst"), 20);
    std::memcpy(to, "........", sizeof to);
    EXPECT_EQ(vformat(to, 0, "%d", 5), 1);
    EXPECT_STREQ(to, "........");
    EXPECT_EQ(uncheckedList(to, 8, nullptr), 0);
    EXPECT_STREQ(to, "");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'to' and 'format' points to the same buffer", unchecked(to, 8, to));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'to' is NULL", vformat(nullptr, 8, "x"));
}

TEST(String, NewCopiesToTheHeap) {
    EXPECT_EQ(kor_string_new(nullptr), nullptr);
    char* copy = kor_string_new("text");
    EXPECT_STREQ(copy, "text");
    kor_heap_free(copy);
}

TEST(String, Comparison) {
    const std::tuple<const char*, const char*, bool, int> cases[] = {
        {"abc", "abc", false, 0}, {"abc", "ABC", false, 1}, {"abc", "ABC", true, 0},    {"abc", "abd", true, -1},
        {"abc", "ab", true, 1},   {"", "a", true, -1},      {"\xE9", "a", true, 1},     {"\xE9", "a", false, 1},
        {"Ab", "aC", true, -1},   {"", "", true, 0},        {"abcd", "ABCE", true, -1},
    };
    for (const auto& [lhs, rhs, ignoreCase, sign] : cases) {
        const int32_t result = kor_string_ccmp(lhs, rhs, ignoreCase);
        EXPECT_EQ((result > 0) - (result < 0), sign) << lhs << ' ' << rhs;
        EXPECT_EQ((ignoreCase ? kor_string_icmp : kor_string_cmp)(lhs, rhs), result);
        EXPECT_EQ(kor_string_cequals(lhs, rhs, ignoreCase), sign == 0) << lhs << ' ' << rhs;
        EXPECT_EQ((ignoreCase ? kor_string_iequals : kor_string_equals)(lhs, rhs), sign == 0);
    }
    EXPECT_EQ(kor_string_icmp("b", "A"), 1) << "the difference of the folded characters";
    EXPECT_EQ(kor_string_cmp(nullptr, nullptr), 0) << "the same pointer is not read";
}

TEST(String, Search) {
    const std::tuple<const char*, const char*, bool, int, int> cases[] = {
        {"ab", "xxAbyy", true, 2, 2},   {"ab", "xxAbyy", false, -1, -1}, {"/", "a/b/c", false, 1, 3},
        {"aa", "aaa", false, 0, 1},     {"Ab", "abAB", true, 0, 2},      {"", "abc", false, 0, -1},
        {"", "abc", true, 0, -1},       {"a", "", false, -1, -1},        {"abcd", "abc", true, -1, -1},
        {"abc", "ABCabc", false, 3, 3}, {"c", "abc", false, 2, 2},       {"aB", "aabab", true, 1, 3},
    };
    for (const auto& [needle, in, ignoreCase, firstAt, lastAt] : cases) {
        const char* first = kor_string_cfind_first(needle, in, ignoreCase);
        const char* last = kor_string_cfind_last(needle, in, ignoreCase);
        EXPECT_EQ((ignoreCase ? kor_string_ifind_first : kor_string_find_first)(needle, in), first);
        EXPECT_EQ((ignoreCase ? kor_string_ifind_last : kor_string_find_last)(needle, in), last);
        EXPECT_EQ(first != nullptr ? first - in : -1, firstAt) << needle << " in " << in;
        EXPECT_EQ(last != nullptr ? last - in : -1, lastAt) << needle << " in " << in;
    }
    const char* text = "text";
    EXPECT_EQ(kor_string_find_first(text, text), text);
    EXPECT_EQ(kor_string_find_last(text, text), text);
    EXPECT_EQ(kor_string_find_last(nullptr, text), nullptr);
    EXPECT_EQ(kor_string_find_last(text, nullptr), nullptr);
}

TEST(String, StartsAndEnds) {
    const std::tuple<const char*, const char*, bool, bool, bool> cases[] = {
        {"c", "abc", false, false, true},    {"abcd", "abc", false, false, false}, {"abc", "abc", false, true, true},
        {"AB", "abxab", true, true, true},   {"AB", "abxab", false, false, false}, {"", "abc", false, true, false},
        {"ab", "xabx", false, false, false}, {"aa", "aaa", false, true, true},
    };
    for (const auto& [part, text, ignoreCase, starts, ends] : cases) {
        EXPECT_EQ(kor_string_cstarts_with(part, text, ignoreCase), starts) << part << ' ' << text;
        EXPECT_EQ(kor_string_cends_with(part, text, ignoreCase), ends) << part << ' ' << text;
        EXPECT_EQ((ignoreCase ? kor_string_istarts_with : kor_string_starts_with)(part, text), starts);
        EXPECT_EQ((ignoreCase ? kor_string_iends_with : kor_string_ends_with)(part, text), ends);
    }
}

TEST(String, Trims) {
    const std::array<const char*, 5> cases[] = {
        {"   x\t", nullptr, "x\t", "   x", "x"},
        {" \t\n\v\f\r", nullptr, "", "", ""},
        {"", nullptr, "", "", ""},
        {"00x0", "0", "x0", "00x", "x"},
        {" x ", "0", " x ", " x ", " x "},
        {"a b", nullptr, "a b", "a b", "a b"},
    };
    for (const auto& [from, set, left, right, both] : cases) {
        char to[16];
        EXPECT_STREQ(kor_string_ltrim(to, from, set), left);
        EXPECT_STREQ(kor_string_rtrim(to, from, set), right);
        EXPECT_STREQ(kor_string_trim(to, from, set), both);
        kor_string_copy(to, from);
        EXPECT_STREQ(kor_string_trim(to, to, set), both) << "in place";
    }
}

TEST(String, ConvertsAndReplacesCharactersInPlace) {
    char text[] = "aB1";
    kor_string_to_upper(text, text);
    EXPECT_STREQ(text, "AB1");
    kor_string_to_lower(text, text);
    EXPECT_STREQ(text, "ab1");
    char mixed[] = "aAbA";
    EXPECT_EQ(kor_string_replace_chars(mixed, 'A', '-'), 2U);
    EXPECT_STREQ(mixed, "a-b-");
    EXPECT_EQ(kor_string_ireplace_chars(mixed, 'B', '*'), 1U);
    EXPECT_STREQ(mixed, "a-*-");
    EXPECT_EQ(kor_string_replace_chars(nullptr, 'a', 'b'), 0U);
}

TEST(String, FoldsAsciiOnly) {
    for (int byte = 1; byte <= 0xFF; ++byte) {
        const char c = static_cast<char>(byte);
        const char upper = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
        const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        const char text[] = {'-', c, '\0'};
        char to[3];
        kor_string_to_upper(to, text);
        EXPECT_EQ(to[1], upper) << byte;
        kor_string_to_lower(to, text);
        EXPECT_EQ(to[1], lower) << byte;
        for (int flipped : {byte ^ 0x20, byte}) {
            const char other[] = {'-', static_cast<char>(flipped), '\0'};
            const bool same = lower == other[1] || upper == other[1];
            EXPECT_EQ(kor_string_iequals(text, other), same) << byte;
            EXPECT_EQ(kor_string_ifind_first(text, other) == other, same) << byte;
            EXPECT_EQ(kor_string_ifind_last(text + 1, other) == other + 1, same) << byte;
            char replaced[] = {'-', other[1], '\0'};
            EXPECT_EQ(kor_string_ireplace_chars(replaced + 1, c, '.'), same ? 1U : 0U) << byte;
        }
    }
}

TEST(String, RandomTextsAreDigitsAndLetters) {
    char text[201] = "?";
    EXPECT_EQ(kor_string_random(text, 200), text);
    EXPECT_EQ(std::strlen(text), 200U);
    EXPECT_EQ(std::string(text).find_first_not_of("0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"),
              std::string::npos);
    EXPECT_NE(std::string(text), std::string(200, text[0]));
}

}  // namespace
