// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDHOLDER_MENU_H
#define QUORVEL_SIMULATOR_CARDHOLDER_MENU_H

#include <optional>
#include <string>
#include <vector>

#include "simulator/cardholder/event.h"
#include "simulator/device/screen.h"
#include "wire/status.h"

namespace quorvel::sim {

// The arrows move, enter chooses, a digit chooses at once.
class Menu {
public:
    struct Result {
        Status status = Status::kOk;
        // Counted from 1.
        size_t option = 0;
    };

    Menu(Screen& screen, std::string title, std::vector<std::string> options);

    // How it ended, once an event ends it.
    [[nodiscard]] std::optional<Result> on(const Event& event);

private:
    std::optional<Result> press(Key key);

    Screen* screen_;
    Screen::Content content_;
};

}  // namespace quorvel::sim

#endif
