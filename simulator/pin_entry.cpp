// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/pin_entry.h"

#include <utility>
#include <variant>

namespace quorvel::sim {

PinEntry::PinEntry(Screen& screen, std::string message, size_t fewest, size_t most)
    : screen_(&screen), message_(std::move(message)), fewest_(fewest), most_(most) {
    show();
}

std::optional<PinEntry::Result> PinEntry::on(const Event& event) {
    const auto* pressed = std::get_if<KeyPressed>(&event);
    return pressed != nullptr ? press(pressed->key) : std::nullopt;
}

std::optional<PinEntry::Result> PinEntry::press(Key key) {
    if (key == Key::cancel) return Result{.status = Status::cancel};
    if (key == Key::enter && pin_.size() >= fewest_) return Result{.pin = pin_};
    if (key == Key::clear) pin_.clear();
    if (is_digit(key) && pin_.size() < most_) pin_.push_back(static_cast<char>(key));
    show();
    return std::nullopt;
}

void PinEntry::show() const { screen_->show({.text = message_, .typed = std::string(pin_.size(), '*')}); }

}  // namespace quorvel::sim
