// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/abecs/comm/fast_clock.h"

#include <cstdint>
#include <ctime>

extern "C" {
int __real_clock_gettime(clockid_t clock, timespec* now);
int __wrap_clock_gettime(clockid_t clock, timespec* now);
}

namespace {

constexpr int64_t kSecond = 1'000'000'000;

int speed = 1;

}  // namespace

int __wrap_clock_gettime(clockid_t clock, timespec* now) {
    const int result = __real_clock_gettime(clock, now);
    if (clock == CLOCK_MONOTONIC) {
        const int64_t fast = speed * (now->tv_sec * kSecond + now->tv_nsec);
        *now = {fast / kSecond, fast % kSecond};
    }
    return result;
}

FastClock::FastClock(int factor) { speed = factor; }

FastClock::~FastClock() { speed = 1; }
