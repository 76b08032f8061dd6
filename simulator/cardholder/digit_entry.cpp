// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cardholder/digit_entry.h"

#include <utility>
#include <variant>

namespace quorvel::sim {

DigitEntry::DigitEntry(Screen& screen, std::string message, size_t fewest, size_t most, Echo echo)
    : screen_(&screen), message_(std::move(message)), fewest_(fewest), most_(most), echo_(echo) {
    show();
}

std::optional<DigitEntry::Result> DigitEntry::on(const Event& event) {
    const auto* pressed = std::get_if<KeyPressed>(&event);
    return pressed != nullptr ? press(pressed->key) : std::nullopt;
}

std::optional<DigitEntry::Result> DigitEntry::press(Key key) {
    if (key == Key::kCancel) { return Result{.status = Status::kCancel}; }
    if (key == Key::kEnter && digits_.size() >= fewest_) { return Result{.digits = digits_}; }
    if (key == Key::kClear) { digits_.clear(); }
    if (is_digit(key) && digits_.size() < most_) { digits_.push_back(static_cast<char>(key)); }
    show();
    return std::nullopt;
}

void DigitEntry::show() const {
    screen_->show({.text = message_, .typed = echo_ == Echo::kDigits ? digits_ : std::string(digits_.size(), '*')});
}

}  // namespace quorvel::sim
