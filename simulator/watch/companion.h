// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WATCH_COMPANION_H
#define QUORVEL_SIMULATOR_WATCH_COMPANION_H

#include <chrono>
#include <optional>
#include <string>

#include "simulator/watch/exchange.h"

namespace quorvel::sim {

class PinPad;

// Something that goes along with a PIN pad, beside whoever else acts on it. All is called on the PIN pad's thread,
// between one step of its and the next, so that whatever the companion does takes its place among what the host does in
// the same order each time.
class Companion {
public:
    using Clock = std::chrono::steady_clock;

    Companion() = default;
    virtual ~Companion() = default;
    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;

    // A command has come, and will be carried out now.
    virtual void begins(PinPad&, const Exchange&) {}
    // A command has begun to wait for the cardholder.
    virtual void waits(PinPad& pinPad, const std::string& command) = 0;
    // A command has ended.
    virtual void exchanged(PinPad& pinPad, const Exchange& exchange) = 0;
    // A host has closed the line, after it had sent something.
    virtual void left(PinPad&) {}

    // First before anything is heard, then from time to time, and at due() if there is one.
    virtual void work(PinPad& pinPad, Clock::time_point now) = 0;
    [[nodiscard]] virtual std::optional<Clock::time_point> due() const = 0;
};

}  // namespace quorvel::sim

#endif
