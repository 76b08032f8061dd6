// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDHOLDER_DIGIT_ENTRY_H
#define QUORVEL_SIMULATOR_CARDHOLDER_DIGIT_ENTRY_H

#include <cstddef>
#include <optional>
#include <string>

#include "simulator/cardholder/event.h"
#include "simulator/device/screen.h"
#include "wire/status.h"

namespace quorvel::sim {

// Typing a number or a PIN under a message on the screen.
class DigitEntry {
public:
    // What the screen shows of the digits: each of them, or only how many there are.
    enum class Echo { kDigits, kCount };

    struct Result {
        // Anything but OK is the command's answer.
        Status status = Status::kOk;
        std::string digits = {};
    };

    DigitEntry(Screen& screen, std::string message, size_t fewest, size_t most, Echo echo);

    // Once the event ends the entry. Enter does not, with fewer digits than there must be.
    [[nodiscard]] std::optional<Result> on(const Event& event);
    [[nodiscard]] bool is_empty() const noexcept { return digits_.empty(); }

private:
    [[nodiscard]] std::optional<Result> press(Key key);
    void show() const;

    Screen* screen_;
    std::string message_;
    size_t fewest_;
    size_t most_;
    Echo echo_;
    std::string digits_;
};

}  // namespace quorvel::sim

#endif
