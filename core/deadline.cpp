// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "core/deadline.h"

#include <cerrno>
#include <ctime>

using namespace std::chrono_literals;

namespace kor {

std::chrono::nanoseconds monotonic_now() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

// Split into seconds and their rest before the unit changes: the longest times do not fit into nanoseconds.
void sleep_out(std::chrono::milliseconds time) {
    if (time <= 0ms) { return; }
    const auto whole = std::chrono::floor<std::chrono::seconds>(time);
    const std::chrono::nanoseconds rest = time - whole;
    timespec left{whole.count(), static_cast<decltype(timespec::tv_nsec)>(rest.count())};
    while (clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) == EINTR) {}
}

}  // namespace kor
