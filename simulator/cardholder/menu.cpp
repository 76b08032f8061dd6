// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cardholder/menu.h"

#include <utility>
#include <variant>

namespace quorvel::sim {

Menu::Menu(Screen& screen, std::string title, std::vector<std::string> options)
    : screen_(&screen), content_{.text = std::move(title), .menu = std::move(options), .selected = 1} {
    screen_->show(content_);
}

std::optional<Menu::Result> Menu::on(const Event& event) {
    const auto* pressed = std::get_if<KeyPressed>(&event);
    return pressed != nullptr ? press(pressed->key) : std::nullopt;
}

std::optional<Menu::Result> Menu::press(Key key) {
    const size_t last = content_.menu.size();
    if (key == Key::kCancel) { return Result{.status = Status::kCancel}; }
    if (key == Key::kEnter) { return Result{.option = content_.selected}; }
    if (is_digit(key)) {
        const auto option = static_cast<size_t>(key) - static_cast<size_t>(Key::kDigit0);
        return option >= 1 && option <= last ? std::optional(Result{.option = option}) : std::nullopt;
    }
    if (key == Key::kDown && content_.selected < last) { ++content_.selected; }
    if (key == Key::kUp && content_.selected > 1) { --content_.selected; }
    screen_->show(content_);
    return std::nullopt;
}

}  // namespace quorvel::sim
