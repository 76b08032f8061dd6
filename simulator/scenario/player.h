// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_SCENARIO_PLAYER_H
#define QUORVEL_SIMULATOR_SCENARIO_PLAYER_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "simulator/scenario/progress.h"
#include "simulator/scenario/scenario.h"

namespace quorvel::sim {

// Goes through a script, which must outlive it.
class Player {
public:
    using Clock = std::chrono::steady_clock;

    explicit Player(const std::vector<Step>& script) : script_(script), next_(script.begin()) {}

    void command_waits(const std::string& command);
    // Whatever waited does so no more.
    void command_ended() { waiting_.reset(); }

    // Does what can be done by now.
    void go_on(PinPad& pinPad, Clock::time_point now);
    // The end of a pause.
    [[nodiscard]] std::optional<Clock::time_point> due() const { return pausedUntil_; }

    [[nodiscard]] bool is_done() const { return next_ == script_.end(); }
    [[nodiscard]] std::vector<Progress::Line> progress() const;
    // What the script did not come to, in words.
    [[nodiscard]] std::optional<std::string> complaint(const std::string& file) const;

private:
    [[nodiscard]] bool is_over(const Step::Wait& wait);
    [[nodiscard]] bool is_over(const Step::Pause& pause, Clock::time_point now);

    const std::vector<Step>& script_;
    std::vector<Step>::const_iterator next_;
    // The command that waits, until a step has taken it.
    std::optional<std::string> waiting_;
    std::optional<Clock::time_point> pausedUntil_;
    // Those that have begun to wait since the script came to where it is.
    std::vector<std::string> others_;
};

}  // namespace quorvel::sim

#endif
