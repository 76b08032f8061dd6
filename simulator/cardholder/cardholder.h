// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDHOLDER_CARDHOLDER_H
#define QUORVEL_SIMULATOR_CARDHOLDER_CARDHOLDER_H

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/cardholder/event.h"

namespace quorvel::sim {

// What the person at the PIN pad does, now or as soon as a command asks for it. Safe from any thread.
class Cardholder {
public:
    void act(const Gestures& gestures);

    struct Plan {
        std::string command;
        Gestures gestures;
        // Else it is dropped when the session ends, or the next one where none goes on.
        bool kept = true;
        // A command has been carried out since it was made.
        bool passed = false;
    };

    // Does so when a command of that id waits. Each call serves one such command, in the order of the calls.
    void when(Plan plan);
    // Those that no command has used yet.
    [[nodiscard]] std::vector<Plan> plans() const;
    // Those that were dropped at the end of a session, the newest hundred of them.
    [[nodiscard]] std::vector<Plan> unused() const;
    // Forgets both.
    void clear_plans();
    // And what was done and nobody has seen.
    void clear();

    // How often somebody has, a plan that came true included.
    [[nodiscard]] uint64_t acts() const;

    // The PIN pad's side: a command begins to wait; what was done since the last call.
    void attend(std::string_view command);
    [[nodiscard]] std::vector<Event> take();
    // A command that could have used a plan is carried out.
    void pass();
    // A session has ended, or the host has gone. One that only ends what another host has left is not yet the session
    // that a plan is for.
    enum class End { kSession, kHost };
    void part(End end);

private:
    void add(const Gestures& gestures);

    mutable std::mutex mutex_;
    uint64_t acts_ = 0;
    std::vector<Event> done_;
    std::vector<Plan> planned_;
    std::deque<Plan> unused_;
};

}  // namespace quorvel::sim

#endif
