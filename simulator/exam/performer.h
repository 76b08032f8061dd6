// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_EXAM_PERFORMER_H
#define QUORVEL_SIMULATOR_EXAM_PERFORMER_H

#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "simulator/exam/exam_case.h"
#include "simulator/exam/ledger.h"
#include "simulator/exam/process.h"
#include "simulator/pin_pad.h"
#include "simulator/watch/companion.h"

namespace quorvel::sim::exam {

// Plays the person of a case and all that goes wrong in it, and keeps the ledger.
class Performer : public Companion {
public:
    // For one sale.
    struct Sale {
        Person person;
        std::vector<Cue> cues;
        Ledger ledger = {};
        // Of commands that came.
        std::set<std::string> seen = {};
    };

    explicit Performer(std::function<void()> lineGoes) : lineGoes_(std::move(lineGoes)) {}

    // What comes now is about another sale. Safe from any thread, as sale() is.
    void begin(Sale sale, Process* process);
    [[nodiscard]] Sale sale() const;

    // A listener of the PIN pad's.
    void crossed(const Traffic& traffic);
    void waits(PinPad& pinPad, const std::string& command) override;
    void exchanged(PinPad& pinPad, const Exchange& exchange) override;
    void work(PinPad& pinPad, Clock::time_point now) override;
    [[nodiscard]] std::optional<Clock::time_point> due() const override;

private:
    struct Pending {
        Clock::time_point at;
        Cue cue;
    };

    bool cue(PinPad& pinPad, Cue::When when, const std::string& command);
    void perform(PinPad& pinPad, const Cue& cue);
    void act_as_usual(PinPad& pinPad, const std::string& command);

    const std::function<void()> lineGoes_;
    mutable std::mutex mutex_;
    Sale sale_;
    Process* process_ = nullptr;
    std::deque<Pending> pending_;
    size_t cards_ = 0;
    size_t entries_ = 0;
};

}  // namespace quorvel::sim::exam

#endif
