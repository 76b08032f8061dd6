// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/exception.h"

#include <climits>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <unistd.h>

#include "core/attempt.h"
#include "core/raise.h"
#include "quorvel/kor/enum.h"
#include "quorvel/kor/heap.h"
#include "quorvel/kor/serial.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/raised.h"

// In try_block.c.
extern "C" {
void try_branches(char* trace, int16_t code, int16_t inCatch, int16_t inCleanup);
void try_nested(char* trace, int depth);
void leave_block_c(char* trace, char branch, char how);
void leave_nested_c(char* trace, char branch, char how);
}

namespace {

#define LEAVE_BLOCK leave_block_cpp
#define LEAVE_NESTED leave_nested_cpp
#include "tests/core/leave_block.inc"

using namespace support;

constexpr KorResult_E kIo = KOR_RESULT_IO_ERROR;
constexpr KorResult_E kTimeout = KOR_RESULT_TIMEOUT_ERROR;

const Raised kPending{kTimeout, "pending"};
const Raised kOther{kIo, "other"};
constexpr auto kRaisePending = [] { kor_exception_throw(kTimeout, "pending"); };
constexpr auto kRaiseOther = [] { kor_exception_throw(kIo, "other"); };

TEST(Result, NamesEveryCode) {
    for (int16_t code = 0; code <= KOR_RESULT_CRYPT_ERROR; ++code) {
        EXPECT_EQ("[" + std::string(kor_result_to_string(code)) + "] ", support::error(code, "").message);
    }
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "Unhandled KorResult_E: 14\n", kor_result_to_string(14));
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "Unhandled KorResult_E: -1\n", kor_result_to_string(-1));
}

TEST(Exception, MessageIsCutAt255Characters) {
    const std::string fits(255, 'x');
    const std::string longer = fits + "y";
    EXPECT_EQ(raised_by([&] { kor_exception_throw(kIo, fits.c_str()); }), (Raised{kIo, fits}));
    EXPECT_EQ(raised_by([&] { kor_exception_throw(kIo, longer.c_str()); }), (Raised{kIo, fits}));
    EXPECT_EQ(raised_by([&] { kor_exception_fthrow(kIo, "%s", longer.c_str()); }), (Raised{kIo, fits}));
    EXPECT_EQ(raised_by([&] { kor_exception_throw(kIo, nullptr); }), (Raised{kIo, ""}));
    EXPECT_EQ(raised_by([&] { kor::raise(kIo, "%s", longer.c_str()); }).message,
              "[KOR_RESULT_IO_ERROR] " + std::string(255 - 22, 'x'));
}

TEST(Exception, MessageCanBeMadeOfThePendingOne) {
    const std::pair<void (*)(), Raised> cases[] = {
        {[] { kor::raise(kIo, "by %s, %s", kor_exception_get_message(), "twice"); }, error(kIo, "by pending, twice")},
        {[] { kor_exception_fthrow(kIo, "by %s, %s", kor_exception_get_message(), "twice"); },
         {kIo, "by pending, twice"}},
        {[] { kor_exception_throw(kIo, kor_exception_get_message()); }, {kIo, "pending"}},
        {[] { kor_exception_throw(kIo, kor_exception_get_message() + 3); }, {kIo, "ding"}},
    };
    for (const auto& [raise, expected] : cases) {
        const auto again = raise;
        EXPECT_EQ(raised_by([&] { kor::attempt(kRaisePending).on_any([&] { again(); }).run(); }), expected);
        EXPECT_EQ(raised_by([&] { kor::attempt(kRaisePending).cleanup([&] { again(); }).run(); }), expected);
    }
}

TEST(TryBlockInC, RunsItsBranchesInOrder) {
    const std::tuple<int16_t, int16_t, int16_t, std::string, Raised> cases[] = {
        {KOR_RESULT_OK, KOR_RESULT_OK, KOR_RESULT_OK, "bue", {}},  // raising success does nothing
        {kIo, KOR_RESULT_OK, KOR_RESULT_OK, "u6e", {}},
        {kTimeout, KOR_RESULT_OK, KOR_RESULT_OK, "u0e", {}},  // the first that matches
        {kTimeout, KOR_RESULT_OK, kIo, "u6e", {}},            // the block's own branches see an error of its clean-up
        {kIo, kIo, KOR_RESULT_OK, "u6", {kIo, "in catch"}},
    };
    for (const auto& row : cases) {
        char trace[32] = "";
        const auto& [code, inCatch, inCleanup, passed, raised] = row;
        EXPECT_EQ(raised_by([&, c = code, i = inCatch, u = inCleanup] { try_branches(trace, c, i, u); }), raised);
        EXPECT_EQ(trace, passed);
    }
}

TEST(TryBlockInC, PassesOnWhatNoBranchTakesAndAllocatesNothingAgain) {
    for (const size_t failAt : {size_t{0}, size_t{1}}) {
        char trace[32] = "";
        const support::FailingMalloc failing(failAt);
        EXPECT_EQ(raised_by([&] { try_nested(trace, 5); }), (Raised{kIo, "deep"}));
        EXPECT_STREQ(trace, "((((()))))");
        EXPECT_FALSE(failing.failed());
        EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
    }
}

// A block that stayed open would catch the error raised behind it, in a function that has ended.
void expect_closed(void (*leave)(char*, char, char), char branch, char how, const char* expected) {
    char trace[32] = "";
    KorExceptionFrameNode* outer = nullptr;
    KorExceptionFrameNode* behind = nullptr;
    int16_t pending = -1;
    EXPECT_EQ(raised_by([&] {
                  outer = kor_exception_get_frame_node();
                  leave(trace, branch, how);
                  behind = kor_exception_get_frame_node();
                  pending = kor_exception_get_error();
                  kRaisePending();
              }),
              kPending);
    EXPECT_STREQ(trace, expected) << branch << how;
    EXPECT_EQ(behind, outer) << branch << how;
    EXPECT_EQ(pending, KOR_RESULT_OK) << branch << how;
    EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
}

// What is passed for each way out of each branch; `e` stands behind the block, `g` where goto leads. An inner block
// that is left has cleared the error that the clean-up found pending.
TEST(TryBlock, IsClosedHoweverItIsLeft) {
    const struct {
        char branch;
        const char* traces[4];
        const char* nested[4];
    } rows[] = {
        {'b', {"b", "bg", "be", "bu;e"}, {"", "g", "uce", "uce"}},
        {'c', {"bu;c", "bu;cg", "bu;ce", "bu;ce"}, {"u", "ug", "uce", "uce"}},
        {'u', {"bu", "bug", "bue", "bue"}, {"", "g", "ue", "ue"}},
        {'U', {"bu", "bug", "bue", "buc;e"}, {"", "g", "ue", "ue"}},
    };
    for (const auto& row : rows) {
        for (size_t way = 0; way < 4; ++way) {
            const char how = "rgbc"[way];
            for (auto* leave : {leave_block_c, leave_block_cpp}) {
                expect_closed(leave, row.branch, how, row.traces[way]);
            }
            for (auto* leave : {leave_nested_c, leave_nested_cpp}) {
                expect_closed(leave, row.branch, how, row.nested[way]);
            }
        }
    }
}

TEST(TryBlock, IsClosedByAnExceptionOfCpp) {
    const auto throws = [] {
        KOR_TRY { throw std::runtime_error("thrown"); }
        KOR_CLEANUP {}
        KOR_END_TRY;
    };
    EXPECT_THROW(throws(), std::runtime_error);
    EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
}

TEST(Attempt, CleansUpFirstAndTriesAsManyBranchesAsItIsGiven) {
    for (const int16_t code : std::initializer_list<int16_t>{kIo, kTimeout, KOR_RESULT_PROTOCOL_ERROR, 99}) {
        std::string trace;
        kor::attempt([&] { kor_exception_throw(code, "thrown"); })
            .on(KOR_RESULT_IO_ERROR, [&] { trace += std::to_string(KOR_RESULT_IO_ERROR); })
            .on(KOR_RESULT_TIMEOUT_ERROR, [&] { trace += std::to_string(KOR_RESULT_TIMEOUT_ERROR); })
            .on(KOR_RESULT_PROTOCOL_ERROR, [&] { trace += std::to_string(KOR_RESULT_PROTOCOL_ERROR); })
            .on_any([&] { trace += "99"; })
            .cleanup([&] { trace += kor_exception_get_message() + std::string(", cleaned "); })
            .run();
        EXPECT_EQ(trace, "thrown, cleaned " + std::to_string(code));
        EXPECT_EQ(kor_exception_get_error(), KOR_RESULT_OK);
    }
}

TEST(Attempt, PutsThePendingErrorBackUnlessAnotherOneTakesItsPlace) {
    const std::pair<void (*)(), Raised> cases[] = {{[] { kor::attempt([] {}).run(); }, kPending},
                                                   {[] { kor::attempt(kRaiseOther).on_any([] {}).run(); }, kPending},
                                                   {[] { kor::attempt(kRaiseOther).run(); }, kOther}};
    KorException after{};
    const auto look = [&] { kor_exception_get(&after); };
    for (const auto& [step, expected] : cases) {
        const auto cleanUp = step;
        kor::attempt(kRaisePending).on_any(look).cleanup([&] { cleanUp(); }).run();
        EXPECT_EQ((Raised{after.error, after.message}), expected);
    }
    const support::ReturningRaises handler;
    const auto failAndLook = [&] { kor::attempt(kRaiseOther).run(), look(); };
    kor::attempt(kRaisePending).on_any(failAndLook).run();
    EXPECT_EQ((Raised{after.error, after.message}), Raised{}) << "one that nobody caught leaves nothing pending";
    EXPECT_EQ(handler.all(), std::vector{kOther});
}

// An application hands on what it caught: to show it, to store it, to open what it names.
TEST(Attempt, LeavesTheTextOfThePendingErrorToItsBody) {
    const char* text = kor_exception_get_message();
    std::string seen;
    const auto handOn = [&] {
        kor::attempt([&] {
            EXPECT_EQ(kor_exception_get_error(), KOR_RESULT_OK);
            kor::attempt([&] { seen = text; }).run();
            kor_serial_open(text);
        }).run();
    };
    EXPECT_RAISES(KOR_RESULT_FILE_NOT_FOUND, "No such port: pending", kor::attempt(kRaisePending).on_any(handOn).run());
    EXPECT_EQ(seen, "pending");
}

TEST(Attempt, ClosesItsOwnFrameAndNoOther) {
    std::string trace;
    auto inside = [&] {
        KorExceptionFrameNode* const outer = kor_exception_get_frame_node();
        const auto look = [&] { trace += kor_exception_get_frame_node() == outer ? "closed " : "open "; };
        kor::attempt([] {}).cleanup(look).run();
        look();
        kor::attempt([] { kor_exception_throw(kIo, "%d is text"); }).cleanup([&] { trace += "cleaned"; }).run();
    };
    EXPECT_EQ(raised_by(inside), (Raised{kIo, "%d is text"}));
    EXPECT_EQ(trace, "closed closed cleaned");
    EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
}

TEST(UncaughtHandler, ThatReturnsLetsTheRaiserGoOnWithNothingPending) {
    const support::ReturningRaises handler;
    char trace[32] = "";
    kor::raise(kIo, "out in the open");
    try_nested(trace, 1);
    EXPECT_STREQ(trace, "()x") << "an error that a block passed on";
    EXPECT_EQ(handler.all(), (std::vector<Raised>{error(kIo, "out in the open"), {kIo, "deep"}}));
    EXPECT_EQ(kor_exception_get_error(), KOR_RESULT_OK);
    EXPECT_STREQ(kor_exception_get_message(), "");
    EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
    EXPECT_STREQ(kor_result_to_string(99), "");
    EXPECT_FALSE(kor_enum_is_valid(INT_MIN, 1, INT_MIN));
    EXPECT_EQ(handler.all().size(), 4U);
}

TEST(UncaughtHandlerDeathTest, DefaultPrintsAndAborts) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto raiseInTheOpen = [](const char* message) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        kor_exception_throw(KOR_RESULT_IO_ERROR, message);
    };
    EXPECT_EXIT(raiseInTheOpen("broken"), testing::KilledBySignal(SIGABRT), "Uncaught error: 6 \\(broken\\)\n");
    EXPECT_EXIT(raiseInTheOpen(nullptr), testing::KilledBySignal(SIGABRT), "Uncaught error: 6\n");
}

TEST(Enum, ChecksListsAndRanges) {
    for (int32_t value = -2; value <= 6; ++value) {
        EXPECT_EQ(kor_enum_is_valid(value, 1, 3, 5, INT_MIN), value == 1 || value == 3 || value == 5) << value;
        EXPECT_EQ(kor_enum_is_valid_range(value, -1, 5), value != -2 && value != 6) << value;
        EXPECT_EQ(kor_enum_is_valid_range(value, 5, 5), value == 5) << value;
        EXPECT_FALSE(kor_enum_is_valid(value, INT_MIN));
    }
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "-2147483648 is not acceptable as an enumerator",
                  kor_enum_is_valid(INT_MIN, 1, INT_MIN));
}

TEST(Heap, ExhaustionRaisesUnlessNullable) {
    EXPECT_RAISES(KOR_RESULT_MALLOC_ERROR, "", kor_heap_alloc(SIZE_MAX / 2 + 1, 0));
    EXPECT_EQ(kor_heap_alloc(SIZE_MAX / 2 + 1, 1), nullptr);
    void* empty = kor_heap_alloc(0, 1);
    EXPECT_NE(empty, nullptr);
    kor_heap_free(empty);
}

}  // namespace
