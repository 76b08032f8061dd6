// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_SCENARIO_SCENARIO_H
#define QUORVEL_SIMULATOR_SCENARIO_SCENARIO_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "simulator/cards/cards.h"
#include "simulator/device/device.h"
#include "simulator/scenario/expected_value.h"

namespace quorvel::sim {

class PinPad;

// The commands of which one is meant.
using CommandIds = std::vector<std::string>;

// A line of the script.
struct Step {
    // Until one of these waits for the cardholder.
    struct Wait {
        CommandIds commands;
    };
    struct Pause {
        std::chrono::milliseconds time;
    };
    using Deed = std::function<void(PinPad& pinPad)>;

    uint32_t line = 0;
    // As the file has it: insert = "visa-chip".
    std::string words;
    // What is typed, which may be a PIN, is left out.
    std::string openWords = {};
    std::variant<Wait, Pause, Deed> what;
};

// A command that the host has to send.
struct Expectation {
    // How often; nothing for once or more.
    using Times = std::optional<unsigned>;

    // What it is answered with, when that matters; nothing inside for a command that the host gives up.
    using Status = std::optional<std::optional<int>>;

    uint32_t line = 0;
    CommandIds commands;
    std::vector<ExpectedValue> with = {};
    std::vector<ExpectedValue> without = {};
    Status status = {};
    Times times = 1;
    // Whether it counts wherever it comes, and not only after the expectations before it.
    bool anywhere = false;
};

// Something that the PIN pad has to complain about: a part of the finding's text.
struct ExpectedFinding {
    uint32_t line = 0;
    std::string text;
};

// What a scenario file says.
struct Scenario {
    // When the PIN pad stops by itself, if it does.
    enum class End {
        kClose,  // when the host closes the line
        kDone,   // when it does and nothing is left to do or to expect, or something can be met no more
        kStop,   // never
    };

    // What messages call it.
    std::string file = "scenario";
    std::string title;
    std::string description;
    End end = End::kClose;

    Device device;
    std::chrono::milliseconds second{1000};
    std::chrono::seconds patience{120};
    Cards cards;
    // Whether the amounts' cents have the cardholder act beside the script.
    bool amounts = false;

    std::vector<Step> script;
    std::vector<Expectation> expectations;
    std::vector<ExpectedFinding> findings;

    // docs/writing-a-scenario.md describes the format. Both throw std::runtime_error with what is wrong and where: the
    // file, the line and the key.
    [[nodiscard]] static Scenario from_toml(const std::string& file, std::string_view text);
    // Other files that it names stand beside it.
    [[nodiscard]] static Scenario from_file(const std::string& path);

    // One that comes with the program, by its name, or a file's.
    [[nodiscard]] static Scenario find(const std::string& nameOrPath);
};

struct ShippedScenario {
    std::string_view name;
    std::string_view text;
};

[[nodiscard]] std::vector<ShippedScenario> shipped_scenarios();

}  // namespace quorvel::sim

#endif
