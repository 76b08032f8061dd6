// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/test.h"

#include <algorithm>
#include <csignal>

#include "quorvel/kor/exception.h"
#include "tests/core/owned.h"
#include "tests/support/malloc/exhaustion.h"
#include "tests/support/raised.h"

namespace {

using Suite = Owned<KorTestSuite, kor_test_suite_delete>;

std::string called;

template <char kName>
void note() {
    called += kName;
}

std::string run(KorTestSuite* suite, const support::Raised& expected = {}) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(support::raised_by([&] { kor_test_suite_run(suite); }), expected);
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

template <size_t... kIndexes>
void add_many(KorTestSuite* suite, std::index_sequence<kIndexes...>) {
    const std::string letters = "abcdefghijklmnopqrstuvwxyz";
    (kor_test_suite_add_case(suite, letters.substr(kIndexes, 1).c_str(), note<'a' + static_cast<char>(kIndexes)>), ...);
}

TEST(TestSuite, RunsEachCaseBehindItsTitleWithEveryRun) {
    const Suite suite(kor_test_suite_new());
    EXPECT_EQ(run(suite), "");
    add_many(suite, std::make_index_sequence<26>());
    for (int i = 0; i < 2; ++i) {
        called.clear();
        const std::string printed = run(suite);
        std::string expected;
        for (const char name : called) { expected += "---- " + std::string(1, name) + " ----\n"; }
        EXPECT_EQ(printed, expected) << "each title is the suite's own copy and stands before its own function";
        std::sort(called.begin(), called.end());
        EXPECT_EQ(called, "abcdefghijklmnopqrstuvwxyz");
    }
    const Suite failing(kor_test_suite_new());
    kor_test_suite_add_case(failing, "fails", [] { kor_exception_throw(KOR_RESULT_RUNTIME_ERROR, "failed"); });
    EXPECT_EQ(run(failing, {KOR_RESULT_RUNTIME_ERROR, "failed"}), "---- fails ----\n");
}

TEST(TestSuite, RefusesNoneAndRepetitionInOrder) {
    const Suite suite(kor_test_suite_new());
    kor_test_suite_add_case(suite, "one", note<'1'>);
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'title' is NULL", kor_test_suite_add_case(suite, nullptr, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'fn' is NULL", kor_test_suite_add_case(suite, "one", nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Test case function already registered",
                  kor_test_suite_add_case(suite, "two", note<'1'>));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Test case title already registered",
                  kor_test_suite_add_case(suite, "one", note<'2'>));
    EXPECT_NO_RAISE(kor_test_suite_add_case(suite, "two", note<'2'>));
}

TEST(TestSuite, MakingOneLeavesNothingBehind) {
    EXPECT_EQ((support::allocations_of(support::make<kor_test_suite_new, kor_test_suite_delete>)), 5U);
}

// The twelfth case makes both of the suite's sets grow.
TEST(TestSuite, AddingACaseIsAllOrNothing) {
    constexpr size_t kAllocations = 3 + 4;
    for (const support::Raise raise : support::kBothRaises) {
        for (size_t n = 1; n <= kAllocations + 1; ++n) {
            const Suite suite(kor_test_suite_new());
            add_many(suite, std::make_index_sequence<11>());
            const std::string before = run(suite);
            const auto add = [&] { kor_test_suite_add_case(suite, "new", note<'n'>); };
            EXPECT_EQ(support::fails(n, raise, add), n <= kAllocations);
            if (n > kAllocations) { break; }
            EXPECT_EQ(run(suite), before) << "allocation " << n;
            EXPECT_NO_RAISE(add()) << "tried again after allocation " << n;
            called.clear();
            EXPECT_NE(run(suite).find("---- new ----\n"), std::string::npos);
            EXPECT_EQ(std::count(called.begin(), called.end(), 'n'), 1);
        }
    }
}

volatile std::sig_atomic_t signalled = 0;

TEST(TestHelpers, CompareBytesAndAbort) {
    EXPECT_TRUE(kor_test_mem_equals("a\0b", "a\0b", 3));
    EXPECT_FALSE(kor_test_mem_equals("a\0b", "a\0c", 3));
    EXPECT_TRUE(kor_test_mem_equals(nullptr, nullptr, 0));
    kor_test_signal(SIGABRT, [](int signal) { signalled = signal; });
    kor_test_raise_abort();
    EXPECT_EQ(signalled, SIGABRT);
    kor_test_signal(SIGABRT, nullptr);
    EXPECT_EXIT(kor_test_raise_abort(), testing::KilledBySignal(SIGABRT), "");
}

}  // namespace
