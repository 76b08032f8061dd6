// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_ABECS_COMM_FAST_CLOCK_H
#define QUORVEL_TESTS_ABECS_COMM_FAST_CLOCK_H

// While one lives, the clock by which the library counts its waits runs faster, so that a long limit can be waited out.
// A single wait for input takes its full time all the same. For programs linked with -Wl,--wrap=clock_gettime.
class FastClock {
public:
    explicit FastClock(int factor);
    ~FastClock();
    FastClock(FastClock&&) = delete;
};

#endif
