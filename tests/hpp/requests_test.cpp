// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cerrno>
#include <gtest/gtest.h>

#include "tests/hpp/rows.h"
#include "tests/support/malloc/failing_malloc.h"

namespace {

using namespace hpp;

// What came of it: its result, or the text of an error, which takes no memory.
struct Outcome {
    std::string result = {};
    char error[256] = "";
};

Outcome outcome_of(const Row& row, quorvel::Session& session) {
    Outcome outcome;
    try {
        outcome.result = row.act(session);
    } catch (const std::exception& error) { std::snprintf(outcome.error, sizeof outcome.error, "%s", error.what()); }
    return outcome;
}

TEST(Requests, GoOutAndComeBackAsTheProtocolHasThem) {
    World world;
    for (const Row& row : rows()) {
        world.answer(row.answers);
        const Outcome outcome = outcome_of(row, world.session);
        EXPECT_EQ(outcome.result + outcome.error, row.result) << row.name;
        const bool drawn = row.requests == std::vector<std::string>{"*"};
        if (!drawn) { EXPECT_EQ(world.pad.heard(), framed(row.requests)) << row.name; }
    }
}

// One row after the other with one thing that goes wrong in it: each raise at each call, and each exception of the
// wrapper's own. `arm` has the n-th thing go wrong and tells afterwards whether it came to that.
template <typename Run>
void sweep(const Run& run, size_t atLeast) {
    World world;
    size_t runs = 0;
    for (const Row& row : rows()) {
        for (size_t n = 1;; ++n, ++runs) {
            world.answer(row.answers);
            Outcome outcome;
            size_t kept = 0;
            const bool wrong = run(
                world, n, [&] { outcome = outcome_of(row, world.session); }, kept);
            ASSERT_TRUE(outcome.result == row.result || *outcome.error != '\0') << row.name << ' ' << n;
            ASSERT_EQ(kor_exception_get_frame_node(), nullptr) << row.name << ' ' << n;
            ASSERT_EQ(kept, 0U) << row.name << ' ' << n << ": " << outcome.error;
            world.link.send_can();
            world.answer(row.answers);
            ASSERT_EQ(outcome_of(row, world.session).result, row.result) << row.name << " after " << n;
            if (!wrong) { break; }
        }
    }
    EXPECT_GT(runs, atLeast);
}

TEST(Requests, LoseNothingWhereverMemoryEnds) {
    for (const bool onwards : {false, true}) {
        const auto run = [&](World&, size_t n, auto act, size_t& kept) {
            const support::FailingMalloc memory(n, onwards);
            act();
            if (memory.failed()) { kept = memory.kept(); }
            return memory.failed();
        };
        sweep(run, 500);
    }
}

TEST(Requests, AreFollowedByOthersWhateverTheSystemSays) {
    const auto run = [](World& world, size_t n, auto act, size_t&) {
        world.line.fail(n, EIO);
        act();
        const bool failed = world.line.failed();
        world.line.heal();
        return failed;
    };
    sweep(run, 500);
}

}  // namespace
