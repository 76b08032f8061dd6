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

    // Does so when a command of that id waits. Each call serves one such command, in the order of the calls.
    void when(std::string command, Gestures gestures);

    // How often somebody has, a plan that came true included.
    [[nodiscard]] uint64_t acts() const;

    // The PIN pad's side: a command begins to wait; what was done since the last call.
    void attend(std::string_view command);
    [[nodiscard]] std::vector<Event> take();

private:
    void add(const Gestures& gestures);

    mutable std::mutex mutex_;
    uint64_t acts_ = 0;
    std::vector<Event> done_;
    std::deque<std::pair<std::string, Gestures>> planned_;
};

}  // namespace quorvel::sim

#endif
