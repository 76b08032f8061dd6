// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/regex.h"

#include <tuple>

#include "tests/core/owned.h"
#include "tests/support/raised.h"

namespace {

TEST(Regex, MatchesExtendedExpressionsAnywhereInTheText) {
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"(tty.(serial|usbserial|usbmodem).*)", "tty.usbserial-1410", true},
        {"(tty.(serial|usbserial|usbmodem).*)", "cu.usbserial-1410", false},
        {"^[0-9]{2}$", "42", true},
        {"^[0-9]{2}$", "x42", false},
        {"a+b?", "caac", true},
        {"", "", true},
        {"A", "a", false},
    };
    for (const auto& [pattern, text, matches] : cases) {
        const Owned<KorRegex, kor_regex_delete> regex(kor_regex_new(pattern));
        EXPECT_EQ(kor_regex_match(text, regex), matches) << pattern << " in " << text;
        EXPECT_EQ(kor_regex_match(text, regex), matches) << "a second time";
        EXPECT_EQ(kor_regex_smatch(text, pattern), matches) << pattern << " in " << text;
    }
}

TEST(Regex, WhatCannotBeUsedIsRefusedOnce) {
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'regex' is NULL", kor_regex_match("a", nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'text' is NULL", kor_regex_smatch(nullptr, "a"));
    const support::ReturningRaises raises;
    for (const char* pattern : {"(", "[a", "a{2,1}", "\\"}) {
        EXPECT_EQ(kor_regex_new(pattern), nullptr);
        EXPECT_FALSE(kor_regex_smatch(pattern, pattern));
    }
    EXPECT_EQ(raises.all(), std::vector(8, support::error(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid regular expression")));
}

}  // namespace
