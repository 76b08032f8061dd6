// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WATCH_STATE_BOARD_H
#define QUORVEL_SIMULATOR_WATCH_STATE_BOARD_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace quorvel::sim {

struct State {
    // The id of the command that waits for the cardholder; empty when none does.
    std::string waiting = {};
    bool session = false, encrypted = false;
    bool cardInserted = false;
    // The card number of that card.
    std::string cardNumber = {};
    // The version that all tables have in common, empty if there is none, and how many records there are.
    std::string tables = {};
    size_t records = 0;

    bool operator==(const State&) const = default;
};

// What the PIN pad is at. Safe from any thread.
class StateBoard {
public:
    // `changed` is called after each change as long as the board is there, whoever else listens.
    explicit StateBoard(std::function<void()> changed = {}) : changed_(std::move(changed)) {}

    void post(const State& state);
    [[nodiscard]] State state() const;

    // How often a command of that id, of any id when it is empty, has begun to wait. Who compares can tell that one
    // did, however short its wait was.
    [[nodiscard]] uint64_t waits(const std::string& command) const;

    // Called on the PIN pad's thread after each change; not any more once another one has been set.
    void on_change(std::function<void()> listener);

private:
    const std::function<void()> changed_;
    mutable std::mutex mutex_;
    State state_;
    std::map<std::string, uint64_t> waits_;
    std::function<void()> listener_;
};

}  // namespace quorvel::sim

#endif
