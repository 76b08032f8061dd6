// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/system.h"

#include <climits>
#include <cstdlib>
#include <set>

#include "quorvel/kor/thread.h"
#include "tests/core/signals.h"
#include "tests/support/elapsed.h"
#include "tests/support/raised.h"

using namespace std::chrono_literals;

namespace {

TEST(System, TimeIsTheWallClockInMilliseconds) {
    const auto nowMillis = [] { return std::chrono::system_clock::now().time_since_epoch() / 1ms; };
    const int64_t before = nowMillis();
    const int64_t time = kor_system_current_time_millis();
    EXPECT_GE(time, before);
    EXPECT_LE(time, nowMillis());
}

TEST(System, RandomCoversItsRangeAndNothingElse) {
    const std::pair<int32_t, int32_t> ranges[] = {
        {0, 61}, {-3, 3}, {7, 7}, {INT_MAX - 1, INT_MAX}, {INT_MIN, INT_MIN + 1}};
    for (const auto& [min, max] : ranges) {
        std::set<int32_t> seen;
        for (int i = 0; i < 5000; ++i) { seen.insert(kor_system_random(min, max)); }
        EXPECT_EQ(*seen.begin(), min);
        EXPECT_EQ(*seen.rbegin(), max);
        EXPECT_EQ(seen.size(), static_cast<size_t>(int64_t{max} - min + 1));
    }
    // The whole range has more values than 32 bits can count, and an empty one none to divide by. Within one second
    // each call would repeat itself if it seeded the generator again.
    EXPECT_EQ(kor_system_random(5, 4), 5);
    std::set<int32_t> seen;
    for (int i = 0; i < 100; ++i) { seen.insert(kor_system_random(INT_MIN, INT_MAX)); }
    EXPECT_GT(seen.size(), 50U);
}

TEST(System, NamesAreFixedAndTheEnvironmentIsTheProcesss) {
    EXPECT_STREQ(kor_system_os_name(), "osx");
    EXPECT_STREQ(kor_system_os_arch(), "x86");
    ASSERT_EQ(setenv("QUORVEL_SYSTEM_TEST", "some value", 1), 0);
    EXPECT_STREQ(kor_system_get_env("QUORVEL_SYSTEM_TEST"), "some value");
    ASSERT_EQ(unsetenv("QUORVEL_SYSTEM_TEST"), 0);
    EXPECT_EQ(kor_system_get_env("QUORVEL_SYSTEM_TEST"), nullptr);
    EXPECT_EQ(kor_system_get_env(nullptr), nullptr);
}

TEST(Thread, SleepsForMillisecondsUnlessASignalComes) {
    const support::Elapsed elapsed;
    EXPECT_NO_RAISE(kor_thread_sleep(20));
    EXPECT_TRUE(elapsed.between(20ms, 5000ms));
    const Signals signals(0);
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "usleep() error: 4", kor_thread_sleep(30'000));
    EXPECT_TRUE(elapsed.between(0ms, 20'000ms));
}

}  // namespace
