// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/test.h"

#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "quorvel/kor/exception.h"
#include "tests/core/owned.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/raised.h"

namespace {

using Suite = Owned<KorTestSuite, kor_test_suite_delete>;

std::string called;

template <char kName>
void note() {
    called += kName;
}

void fail() { kor_exception_throw(KOR_RESULT_RUNTIME_ERROR, "[KOR_RESULT_RUNTIME_ERROR] failed"); }

std::string run(KorTestSuite* suite) {
    testing::internal::CaptureStdout();
    EXPECT_NO_RAISE(kor_test_suite_run(suite));
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

TEST(TestSuite, RunsEachCaseOnceBehindItsTitle) {
    const Suite suite(kor_test_suite_new());
    EXPECT_EQ(run(suite), "");
    char title[] = "first";
    kor_test_suite_add_case(suite, title, note<'1'>);
    title[0] = '?';
    called.clear();
    EXPECT_EQ(run(suite), "---- first ----\n") << "the suite keeps a title of its own";
    EXPECT_EQ(called, "1");
    EXPECT_EQ(run(suite), "---- first ----\n");
    EXPECT_EQ(called, "11");
}

template <size_t... kIndexes>
void add_many(KorTestSuite* suite, std::index_sequence<kIndexes...>) {
    const std::string letters = "abcdefghijklmnopqrstuvwxyz";
    (kor_test_suite_add_case(suite, letters.substr(kIndexes, 1).c_str(), note<'a' + static_cast<char>(kIndexes)>), ...);
}

TEST(TestSuite, KeepsEveryCaseAsItGrows) {
    const Suite suite(kor_test_suite_new());
    add_many(suite, std::make_index_sequence<26>());
    called.clear();
    const std::string printed = run(suite);
    std::string expected;
    for (const char name : called) { expected += "---- " + std::string(1, name) + " ----\n"; }
    EXPECT_EQ(printed, expected) << "each title stands before its own function";
    std::sort(called.begin(), called.end());
    EXPECT_EQ(called, "abcdefghijklmnopqrstuvwxyz");
}

TEST(TestSuite, RefusesNoneAndRepetitionInOrder) {
    const Suite suite(kor_test_suite_new());
    kor_test_suite_add_case(suite, "one", note<'1'>);
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'suite' is NULL", kor_test_suite_add_case(nullptr, nullptr, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'title' is NULL", kor_test_suite_add_case(suite, nullptr, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'fn' is NULL", kor_test_suite_add_case(suite, "one", nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Test case function already registered",
                  kor_test_suite_add_case(suite, "one", note<'1'>));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Test case function already registered",
                  kor_test_suite_add_case(suite, "two", note<'1'>));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Test case title already registered",
                  kor_test_suite_add_case(suite, "one", note<'2'>));
    EXPECT_NO_RAISE(kor_test_suite_add_case(suite, "two", note<'2'>));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'suite' is NULL", kor_test_suite_run(nullptr));
    KorTestSuite* none = nullptr;
    EXPECT_NO_RAISE(kor_test_suite_delete(&none));
    EXPECT_NO_RAISE(kor_test_suite_delete(nullptr));
}

TEST(TestSuite, AFailingCaseLeavesTheRun) {
    const Suite suite(kor_test_suite_new());
    kor_test_suite_add_case(suite, "fails", fail);
    testing::internal::CaptureStdout();
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "failed", kor_test_suite_run(suite));
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "---- fails ----\n");
}

TEST(TestSuite, ExhaustionKeepsNothing) {
    EXPECT_NO_RAISE(static_cast<void>(support::raised_by([] {})));
    for (size_t n = 1;; ++n) {
        const support::FailingMalloc failing(n);
        const support::Raised raised = support::raised_by([] {
            KorTestSuite* suite = kor_test_suite_new();
            kor_test_suite_delete(&suite);
        });
        EXPECT_EQ(failing.kept(), 0U) << "allocation " << n;
        if (!failing.failed()) { break; }
        EXPECT_EQ(raised, support::error(KOR_RESULT_MALLOC_ERROR, "")) << "allocation " << n;
    }
    const Suite suite(kor_test_suite_new());
    const support::FailingMalloc failing(3);
    EXPECT_RAISES(KOR_RESULT_MALLOC_ERROR, "", kor_test_suite_add_case(suite, "one", note<'1'>));
    EXPECT_TRUE(failing.failed());
    EXPECT_EQ(failing.kept(), 0U);
    EXPECT_NO_RAISE(kor_test_suite_add_case(suite, "one", note<'1'>));
}

TEST(TestHelpers, MemEqualsComparesBytes) {
    EXPECT_TRUE(kor_test_mem_equals("a\0b", "a\0b", 3));
    EXPECT_FALSE(kor_test_mem_equals("a\0b", "a\0c", 3));
    EXPECT_TRUE(kor_test_mem_equals("a\0b", "a\0c", 2));
    EXPECT_TRUE(kor_test_mem_equals(nullptr, nullptr, 0));
}

volatile std::sig_atomic_t signalled = 0;

TEST(TestHelpers, AbortReachesTheHandler) {
    signalled = 0;
    kor_test_signal(SIGABRT, [](int signal) { signalled = signal; });
    kor_test_raise_abort();
    EXPECT_EQ(signalled, SIGABRT);
    kor_test_signal(SIGABRT, nullptr);
    EXPECT_EXIT(kor_test_raise_abort(), testing::KilledBySignal(SIGABRT), "");
}

}  // namespace
