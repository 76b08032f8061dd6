// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CONTROL_CONTROL_H
#define QUORVEL_SIMULATOR_CONTROL_CONTROL_H

#include <chrono>
#include <cstdint>
#include <mutex>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "simulator/cards/cards.h"
#include "simulator/pin_pad.h"

namespace quorvel::sim {

// All that can be done to a running PIN pad from outside, as requests and answers:
// {"do": "press", "key": "enter"} is answered with {"ok": true}. docs/control-socket.md describes each. Safe from any
// thread.
class Control {
public:
    // A request whose answer has to wait for a command. Whoever performs it asks answer() from time to time.
    struct Await {
        std::string command;
        uint64_t before;
        std::chrono::steady_clock::time_point deadline;
    };

    using Outcome = std::variant<nlohmann::json, Await>;

    // The PIN pad must outlive it.
    explicit Control(PinPad& pinPad, Cards cards = Cards::standard());

    // What is wrong with a request is its answer: {"ok": false, "error": "..."}.
    [[nodiscard]] Outcome perform(const nlohmann::json& request);
    // The same for a request in JSON.
    [[nodiscard]] Outcome perform_line(std::string_view line);

    // Once it is time for one.
    [[nodiscard]] std::optional<nlohmann::json> answer(const Await& await) const;

    [[nodiscard]] PinPad& pin_pad() const noexcept { return pinPad_; }
    // Those that there are now.
    [[nodiscard]] Cards cards() const;
    void add_cards(const Cards& more);
    // Those that there were at first.
    void restore_cards();
    [[nodiscard]] static std::vector<std::string_view> verbs();

private:
    PinPad& pinPad_;
    const Cards firstCards_;
    mutable std::mutex mutex_;
    Cards cards_;
};

[[nodiscard]] nlohmann::json refusal(std::string_view error);

}  // namespace quorvel::sim

#endif
