// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_LINE_PACED_BYTES_H
#define QUORVEL_SIMULATOR_LINE_PACED_BYTES_H

#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>

#include "simulator/wire.h"

namespace quorvel::sim {

// Bytes on their way along the line, one behind the other, each of which arrives in its time.
class PacedBytes {
public:
    using Clock = std::chrono::steady_clock;

    // Pauses of one push: before its first byte, between any two, and once more in its middle.
    struct Pace {
        std::chrono::milliseconds before{};
        std::chrono::milliseconds between{};
        std::chrono::milliseconds amid{};
    };

    // Each byte takes so long; with zero, they come as they are pushed.
    explicit PacedBytes(std::chrono::nanoseconds perByte) : perByte_(perByte) {}

    void push(ByteView bytes, const Pace& pace, Clock::time_point now);
    // Those that have arrived.
    [[nodiscard]] Bytes take(Clock::time_point now);
    // When the next one arrives.
    [[nodiscard]] std::optional<Clock::time_point> due() const;
    [[nodiscard]] size_t size() const noexcept { return bytes_.size(); }
    void clear() noexcept;

private:
    struct Timed {
        Clock::time_point due;
        uint8_t byte;
    };

    std::chrono::nanoseconds perByte_;
    std::deque<Timed> bytes_;
    Clock::time_point last_{};
};

}  // namespace quorvel::sim

#endif
