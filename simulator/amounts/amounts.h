// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_AMOUNTS_AMOUNTS_H
#define QUORVEL_SIMULATOR_AMOUNTS_AMOUNTS_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "simulator/amounts/course.h"
#include "simulator/cardholder/event.h"
#include "simulator/cards/cards.h"
#include "simulator/pin_pad.h"
#include "simulator/watch/companion.h"

namespace quorvel::sim {

// A cardholder who does by himself what a payment takes, and whose luck the cents of its amount decide:
//
//     Amounts amounts;
//     PinPad pinPad({.companion = &amounts});
//
// Whoever acts in time, while a command waits or by a plan for it, acts in his place.
class Amounts : public Companion {
public:
    // He begins to act so long after a command has begun to wait.
    explicit Amounts(std::chrono::milliseconds hesitation = std::chrono::milliseconds(200)) : hesitation_(hesitation) {}

    void begins(PinPad& pinPad, const Exchange& exchange) override;
    void waits(PinPad& pinPad, const std::string& command) override;
    void exchanged(PinPad& pinPad, const Exchange& exchange) override;
    void left(PinPad&) override { begin_anew(); }
    void work(PinPad& pinPad, Clock::time_point now) override;
    [[nodiscard]] std::optional<Clock::time_point> due() const override { return due_; }

private:
    void begin_anew();
    void take_amount(const Exchange& exchange);
    void plan_trouble(PinPad& pinPad, const std::string& command);
    void come_to_card(PinPad& pinPad, int status);

    [[nodiscard]] const Course::Presented& presented() const;
    [[nodiscard]] Gestures present() const;
    [[nodiscard]] Gestures type() const;
    [[nodiscard]] Gestures gestures() const;

    const std::chrono::milliseconds hesitation_;
    uint64_t amount_ = 0;
    const Course* course_ = &kCourses.front();
    // Whether the first card was not taken.
    bool again_ = false;
    uint64_t actsBefore_ = 0;
    std::string waiting_;
    std::optional<Clock::time_point> due_;
};

}  // namespace quorvel::sim

#endif
