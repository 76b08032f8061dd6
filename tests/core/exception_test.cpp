// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/exception.h"

#include <climits>
#include <csignal>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

#include "core/attempt.h"
#include "core/raise.h"
#include "quorvel/kor/enum.h"
#include "quorvel/kor/heap.h"
#include "quorvel/kor/serial.h"
#include "tests/core/leave_block.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/raised.h"

// In try_block.c. Each runs a try block written in C and adds a letter to `trace` for each branch it passes.
extern "C" {
void try_branches(char* trace, int16_t code);
void try_unmatched(char* trace);
void try_error_in_cleanup(char* trace);
void try_error_in_catch(char* trace);
void try_nested(char* trace, int depth);
}

namespace {

using namespace support;

std::string trace_of(void (*block)(char*)) {
    char trace[32] = "";
    EXPECT_EQ(raised_by([&] { block(trace); }), Raised{});
    return trace;
}

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
    EXPECT_EQ(raised_by([&] { kor_exception_throw(6, fits.c_str()); }), (Raised{6, fits}));
    EXPECT_EQ(raised_by([&] { kor_exception_throw(6, longer.c_str()); }), (Raised{6, fits}));
    EXPECT_EQ(raised_by([&] { kor_exception_fthrow(6, "%s", longer.c_str()); }), (Raised{6, fits}));
    EXPECT_EQ(raised_by([&] { kor_exception_throw(6, nullptr); }), (Raised{6, ""}));
    EXPECT_EQ(raised_by([&] { kor::raise(KOR_RESULT_IO_ERROR, "%s", longer.c_str()); }).message,
              "[KOR_RESULT_IO_ERROR] " + std::string(255 - 22, 'x'));
}

TEST(Exception, MessageCanBeMadeOfThePendingOne) {
    void (*const raises[])() = {
        [] { kor::raise(KOR_RESULT_IO_ERROR, "caused by %s, %s", kor_exception_get_message(), "twice"); },
        [] { kor_exception_fthrow(6, "caused by %s, %s", kor_exception_get_message(), "twice"); },
        [] { kor_exception_throw(6, kor_exception_get_message()); },
        [] { kor_exception_throw(6, kor_exception_get_message() + 3); },
    };
    const Raised expected[] = {support::error(6, "caused by the first, twice"),
                               {6, "caused by the first, twice"},
                               {6, "the first"},
                               {6, " first"}};
    for (size_t i = 0; i < std::size(raises); ++i) {
        auto in_catch = [&] {
            kor::attempt([] { kor_exception_throw(7, "the first"); }).on_any([&] { raises[i](); }).run();
        };
        auto in_cleanup = [&] {
            kor::attempt([] { kor_exception_throw(7, "the first"); }).cleanup([&] { raises[i](); }).run();
        };
        EXPECT_EQ(raised_by(in_catch), expected[i]);
        EXPECT_EQ(raised_by(in_cleanup), expected[i]);
    }
}

TEST(Exception, NothingPendingOutsideABlock) {
    EXPECT_EQ(kor_exception_get_error(), 0);
    EXPECT_STREQ(kor_exception_get_message(), "");
    KorException copy{};
    EXPECT_EQ(kor_exception_get(&copy), &copy);
}

TEST(TryBlockInC, RunsItsBranchesInOrder) {
    EXPECT_EQ(trace_of([](char* t) { try_branches(t, KOR_RESULT_OK); }), "bue") << "raising success does nothing";
    EXPECT_EQ(trace_of([](char* t) { try_branches(t, KOR_RESULT_IO_ERROR); }), "u6e");
    EXPECT_EQ(trace_of([](char* t) { try_branches(t, KOR_RESULT_TIMEOUT_ERROR); }), "u0e") << "the first that matches";
    EXPECT_EQ(trace_of(try_error_in_cleanup), "u6e") << "the block's own branches see an error of its clean-up";
    EXPECT_EQ(trace_of(try_error_in_catch), "ioe");
}

TEST(TryBlockInC, UnmatchedErrorPassesOnUnchanged) {
    char trace[32] = "";
    EXPECT_EQ(raised_by([&] { try_unmatched(trace); }), (Raised{7, "late"}));
    EXPECT_STREQ(trace, "u");
    EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
}

TEST(TryBlockInC, NestingAgainAllocatesNothing) {
    char trace[32] = "";
    EXPECT_EQ(raised_by([&] { try_nested(trace, 5); }), (Raised{6, "deep"}));
    EXPECT_STREQ(trace, "((((()))))");
    const support::FailingMalloc failing(1);
    EXPECT_EQ(raised_by([&] { try_nested(trace, 5); }), (Raised{6, "deep"}));
    EXPECT_FALSE(failing.failed());
}

// What a block passes that is left early, by branch and way; `e` stands behind it, `g` where goto leads.
struct Left {
    LeaveBranch branch;
    const char* traces[4];
};
constexpr Left kLeft[] = {
    {LEAVE_BODY, {"b", "bg", "be", "bu;e"}},
    {LEAVE_CATCH, {"bu;c", "bu;cg", "bu;ce", "bu;ce"}},
    {LEAVE_CLEANUP_AFTER_SUCCESS, {"bu", "bug", "bue", "bue"}},
    {LEAVE_CLEANUP_AFTER_ERROR, {"bu", "bug", "bue", "buc;e"}},
};

// The same where a block inside is left; the inner one has cleared the error that the clean-up found pending.
constexpr Left kLeftNested[] = {
    {LEAVE_BODY, {"", "g", "uce", "uce"}},
    {LEAVE_CATCH, {"u", "ug", "uce", "uce"}},
    {LEAVE_CLEANUP_AFTER_SUCCESS, {"", "g", "ue", "ue"}},
    {LEAVE_CLEANUP_AFTER_ERROR, {"", "g", "ue", "ue"}},
};

// A block that stayed open would catch the error raised behind it, in a function that has ended.
void expect_closed(void (*leave)(char*, LeaveBranch, LeaveWay), LeaveBranch branch, int how, const char* expected) {
    char trace[32] = "";
    KorExceptionFrameNode* outer = nullptr;
    KorExceptionFrameNode* behind = nullptr;
    int16_t pending = -1;
    EXPECT_EQ(raised_by([&] {
                  outer = kor_exception_get_frame_node();
                  leave(trace, branch, static_cast<LeaveWay>(how));
                  behind = kor_exception_get_frame_node();
                  pending = kor_exception_get_error();
                  kor_exception_throw(KOR_RESULT_TIMEOUT_ERROR, "behind");
              }),
              (Raised{7, "behind"}));
    EXPECT_STREQ(trace, expected) << branch << how;
    EXPECT_EQ(behind, outer) << branch << how;
    EXPECT_EQ(pending, 0) << branch << how;
    EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
}

TEST(TryBlock, IsClosedHoweverItIsLeft) {
    for (int how = LEAVE_BY_RETURN; how <= LEAVE_BY_CONTINUE; ++how) {
        for (auto* leave : {leave_block_c, leave_block_cpp}) {
            for (const auto& row : kLeft) { expect_closed(leave, row.branch, how, row.traces[how]); }
        }
        for (auto* leave : {leave_nested_c, leave_nested_cpp}) {
            for (const auto& row : kLeftNested) { expect_closed(leave, row.branch, how, row.traces[how]); }
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

TEST(Attempt, CatchesTheCodeItNamesAndCleansUpFirst) {
    std::string trace;
    kor::attempt([&] { kor::raise(KOR_RESULT_TIMEOUT_ERROR, "late"); })
        .on(KOR_RESULT_IO_ERROR, [&] { trace += "io"; })
        .on(KOR_RESULT_TIMEOUT_ERROR, [&] { trace += kor_exception_get_message(); })
        .cleanup([&] { trace += "cleaned "; })
        .run();
    EXPECT_EQ(trace, "cleaned [KOR_RESULT_TIMEOUT_ERROR] late");
    EXPECT_EQ(kor_exception_get_error(), 0);
}

TEST(Attempt, TriesAsManyBranchesAsItIsGiven) {
    for (const int16_t code : std::initializer_list<int16_t>{6, 7, 12, 99}) {
        int16_t caught = 0;
        kor::attempt([&] { kor_exception_throw(code, "thrown"); })
            .on(KOR_RESULT_IO_ERROR, [&] { caught = KOR_RESULT_IO_ERROR; })
            .on(KOR_RESULT_TIMEOUT_ERROR, [&] { caught = KOR_RESULT_TIMEOUT_ERROR; })
            .on(KOR_RESULT_PROTOCOL_ERROR, [&] { caught = KOR_RESULT_PROTOCOL_ERROR; })
            .on_any([&] { caught = 99; })
            .run();
        EXPECT_EQ(caught, code);
    }
}

TEST(Attempt, PutsThePendingErrorBack) {
    KorException after{};
    const auto succeed = [] { kor::attempt([] {}).run(); };
    const auto recover = [] { kor::attempt([] { kor_exception_throw(6, "other"); }).on_any([] {}).run(); };
    for (void (*step)() : {+succeed, +recover}) {
        kor::attempt([] { kor_exception_throw(7, "pending"); })
            .on_any([&] { kor_exception_get(&after); })
            .cleanup([&] { step(); })
            .run();
        EXPECT_EQ((Raised{after.error, after.message}), (Raised{7, "pending"}));
    }
    kor::attempt([] { kor_exception_throw(7, "pending"); })
        .on_any([&] { kor_exception_get(&after); })
        .cleanup([] { kor::attempt([] { kor_exception_throw(6, "other"); }).run(); })
        .run();
    EXPECT_EQ((Raised{after.error, after.message}), (Raised{6, "other"})) << "an error that leaves takes its place";
    const support::ReturningRaises handler;
    kor::attempt([] { kor_exception_throw(7, "pending"); })
        .on_any([&] {
            kor::attempt([] { kor_exception_throw(6, "other"); }).run();
            kor_exception_get(&after);
        })
        .run();
    EXPECT_EQ((Raised{after.error, after.message}), Raised{}) << "one that nobody caught leaves nothing pending";
    EXPECT_EQ(handler.all(), (std::vector<Raised>{{6, "other"}}));
}

// An application hands on what it caught: to show it, to store it, to open what it names.
TEST(Attempt, LeavesTheTextOfThePendingErrorToItsBody) {
    const char* text = kor_exception_get_message();
    std::string seen;
    KorException after{};
    kor::attempt([] { kor_exception_throw(7, "/no/such/port"); })
        .on_any([&] {
            kor::attempt([&] {
                EXPECT_EQ(kor_exception_get_error(), 0);
                kor::attempt([&] { seen = text; }).run();
                kor_serial_open(text);
            }).on_any([&] {
                  kor_exception_get(&after);
              }).run();
        })
        .run();
    EXPECT_EQ(seen, "/no/such/port");
    EXPECT_STREQ(after.message, "[KOR_RESULT_FILE_NOT_FOUND] No such port: /no/such/port");
}

TEST(Attempt, ClosesItsOwnFrameAndNoOther) {
    std::string trace;
    auto inside = [&] {
        KorExceptionFrameNode* const outer = kor_exception_get_frame_node();
        kor::attempt([] {
        }).cleanup([&] {
              trace += kor_exception_get_frame_node() == outer ? "closed " : "open ";
          }).run();
        trace += kor_exception_get_frame_node() == outer ? "outer " : "lost ";
        kor::attempt([] { kor_exception_throw(6, "%d is text"); }).cleanup([&] { trace += "cleaned"; }).run();
    };
    EXPECT_EQ(raised_by(inside), (Raised{6, "%d is text"}));
    EXPECT_EQ(trace, "closed outer cleaned");
    EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
}

TEST(UncaughtHandler, ThatReturnsLetsTheRaiserGoOn) {
    const support::ReturningRaises handler;
    kor::raise(KOR_RESULT_IO_ERROR, "out in the open");
    EXPECT_EQ(handler.all(), std::vector{support::error(KOR_RESULT_IO_ERROR, "out in the open")});
    EXPECT_EQ(kor_exception_get_error(), 0);
    EXPECT_STREQ(kor_exception_get_message(), "") << "nothing is left pending";
    EXPECT_STREQ(kor_result_to_string(99), "");
    EXPECT_FALSE(kor_enum_is_valid(INT_MIN, 1, INT_MIN));
    EXPECT_EQ(handler.all().size(), 3U);
}

TEST(UncaughtHandler, SeesAnErrorThatABlockPassedOn) {
    const support::ReturningRaises handler;
    char trace[32] = "";
    try_unmatched(trace);
    EXPECT_STREQ(trace, "ux");
    EXPECT_EQ(handler.all(), (std::vector<Raised>{{7, "late"}}));
    EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
}

TEST(UncaughtHandlerDeathTest, DefaultPrintsAndAborts) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto raise_in_the_open = [](const char* message) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        kor_exception_throw(KOR_RESULT_IO_ERROR, message);
    };
    EXPECT_EXIT(raise_in_the_open("broken"), testing::KilledBySignal(SIGABRT), "Uncaught error: 6 \\(broken\\)\n");
    EXPECT_EXIT(raise_in_the_open(nullptr), testing::KilledBySignal(SIGABRT), "Uncaught error: 6\n");
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
    const size_t impossible = SIZE_MAX / 2;
    EXPECT_RAISES(KOR_RESULT_MALLOC_ERROR, "", kor_heap_alloc(impossible, 0));
    EXPECT_EQ(kor_heap_alloc(impossible, 1), nullptr);
    void* empty = kor_heap_alloc(0, 1);
    EXPECT_NE(empty, nullptr);
    kor_heap_free(empty);
}

}  // namespace
