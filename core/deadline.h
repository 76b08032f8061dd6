// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_DEADLINE_H
#define QUORVEL_CORE_DEADLINE_H

#include <algorithm>
#include <chrono>

namespace kor {

// The time on a clock that nobody sets; where it starts means nothing.
[[nodiscard]] std::chrono::nanoseconds monotonic_now();

// The end of a wait.
class Deadline {
public:
    explicit Deadline(std::chrono::milliseconds time) : end_(monotonic_now() + time) {}

    // That of a wait without an end.
    static constexpr Deadline never() { return Deadline(std::chrono::nanoseconds::max()); }
    [[nodiscard]] constexpr bool is_never() const { return end_ == std::chrono::nanoseconds::max(); }

    [[nodiscard]] std::chrono::nanoseconds left() const {
        return std::max(end_ - monotonic_now(), std::chrono::nanoseconds::zero());
    }

    [[nodiscard]] bool passed() const { return left() == std::chrono::nanoseconds::zero(); }

    // The sooner one is the smaller one.
    friend constexpr bool operator<(const Deadline& a, const Deadline& b) { return a.end_ < b.end_; }

private:
    constexpr explicit Deadline(std::chrono::nanoseconds end) : end_(end) {}

    std::chrono::nanoseconds end_;
};

// Sleeps for the whole time, whatever signals come; for none of it when it is negative.
void sleep_out(std::chrono::milliseconds time);

}  // namespace kor

#endif
