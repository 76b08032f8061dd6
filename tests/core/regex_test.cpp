// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/regex.h"

#include <gtest/gtest.h>
#include <vector>

#include "tests/core/owned.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/raised.h"

namespace {

TEST(Regex, MatchesExtendedExpressionsAnywhereInTheText) {
    const struct {
        const char* pattern;
        const char* text;
        bool matches;
    } cases[] = {
        {"(tty.(serial|usbserial|usbmodem).*)", "tty.usbserial-1410", true},
        {"(tty.(serial|usbserial|usbmodem).*)", "any-tty.serial", true},
        {"(tty.(serial|usbserial|usbmodem).*)", "cu.usbserial-1410", false},
        {"(tty.(serial|usbserial|usbmodem).*)", "ttyS0", false},
        {"^[0-9]{2}$", "42", true},
        {"^[0-9]{2}$", "x42", false},
        {"a+b?", "caac", true},
        {"", "", true},
        {"A", "a", false},
    };
    for (const auto& test : cases) {
        const Owned<KorRegex, kor_regex_delete> regex(kor_regex_new(test.pattern));
        EXPECT_EQ(kor_regex_match(test.text, regex), test.matches) << test.pattern << " in " << test.text;
        EXPECT_EQ(kor_regex_match(test.text, regex), test.matches) << "a second time";
        EXPECT_EQ(kor_regex_smatch(test.text, test.pattern), test.matches) << test.pattern << " in " << test.text;
    }
}

TEST(Regex, ExpressionsThatDoNotCompileAreRefusedOnce) {
    const support::ReturningRaises raises;
    for (const char* pattern : {"(", "[a", "a{2,1}", "\\"}) {
        EXPECT_EQ(kor_regex_new(pattern), nullptr);
        EXPECT_FALSE(kor_regex_smatch(pattern, pattern));
    }
    EXPECT_EQ(kor_regex_new(nullptr), nullptr);
    EXPECT_EQ(raises.all(), std::vector(9, support::error(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid regular expression")));
}

TEST(Regex, NoneIsRefusedByMatchAndIgnoredByDelete) {
    const Owned<KorRegex, kor_regex_delete> regex(kor_regex_new("a"));
    KorRegex* none = nullptr;
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'text' is NULL", kor_regex_match(nullptr, regex));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'regex' is NULL", kor_regex_match("a", nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'text' is NULL", kor_regex_smatch(nullptr, "a"));
    EXPECT_NO_RAISE(kor_regex_delete(&none));
    EXPECT_NO_RAISE(kor_regex_delete(nullptr));
    const support::FailingMalloc failing(1);
    EXPECT_RAISES(KOR_RESULT_MALLOC_ERROR, "", kor_regex_new("a"));
    EXPECT_EQ(failing.kept(), 0U);
}

}  // namespace
