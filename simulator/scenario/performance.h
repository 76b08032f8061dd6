// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_SCENARIO_PERFORMANCE_H
#define QUORVEL_SIMULATOR_SCENARIO_PERFORMANCE_H

#include <optional>
#include <string>
#include <vector>

#include "simulator/amounts/amounts.h"
#include "simulator/pin_pad.h"
#include "simulator/scenario/judge.h"
#include "simulator/scenario/player.h"
#include "simulator/scenario/scenario.h"
#include "simulator/watch/companion.h"

namespace quorvel::sim {

// One run of a scenario on a PIN pad:
//
//     Performance performance(Scenario::find("chip-online-pin"));
//     PinPad pinPad(performance.prepare({}));
//     pinPad.run();
//     for (const std::string& complaint : performance.complaints(pinPad.findings())) ...
//
// Others may act on the PIN pad meanwhile.
class Performance : public Companion {
public:
    explicit Performance(Scenario scenario);

    [[nodiscard]] const Scenario& scenario() const noexcept { return scenario_; }

    // Instead of what the scenario says.
    void end_at(Scenario::End end) noexcept { end_ = end; }

    // The same options with the scenario's device, its time, and the performance as companion.
    [[nodiscard]] PinPad::Options prepare(PinPad::Options options);

    // As things stand; on the PIN pad's thread, or while nobody plays it.
    [[nodiscard]] Progress progress() const;
    // What did not go as the scenario says, in words; none when all did. Once the PIN pad has stopped.
    [[nodiscard]] std::vector<std::string> complaints(const std::vector<Finding>& findings) const;

    void begins(PinPad& pinPad, const Exchange& exchange) override;
    void waits(PinPad& pinPad, const std::string& command) override;
    void exchanged(PinPad& pinPad, const Exchange& exchange) override;
    void left(PinPad& pinPad) override;
    void work(PinPad& pinPad, Clock::time_point now) override;
    [[nodiscard]] std::optional<Clock::time_point> due() const override;

private:
    const Scenario scenario_;
    Scenario::End end_;
    Player player_;
    Judge judge_;
    // The cardholder by the amounts' cents, if the scenario has him.
    std::optional<Amounts> amounts_;
};

}  // namespace quorvel::sim

#endif
