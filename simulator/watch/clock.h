// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WATCH_CLOCK_H
#define QUORVEL_SIMULATOR_WATCH_CLOCK_H

#include <chrono>
#include <functional>
#include <string>

namespace quorvel::sim {

// Tells what time it is, to whoever writes it down.
using WallClock = std::function<std::chrono::system_clock::time_point()>;

// One that stands still, at a time like "2026-01-02T03:04:05Z", or without the Z in local time. Throws
// std::invalid_argument for a time that there is not.
[[nodiscard]] WallClock standing_clock(const std::string& time);

// "2026-01-02 03:04:05.000", in local time.
[[nodiscard]] std::string time_text(std::chrono::system_clock::time_point time);

}  // namespace quorvel::sim

#endif
