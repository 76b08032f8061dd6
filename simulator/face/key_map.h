// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_FACE_KEY_MAP_H
#define QUORVEL_SIMULATOR_FACE_KEY_MAP_H

#include <optional>
#include <span>
#include <string_view>
#include <variant>

#include "simulator/cardholder/event.h"

namespace quorvel::sim {

// What else a person does besides pressing the PIN pad's keys.
enum class Move { kNextCard, kPreviousCard, kSwipe, kInsertOrTakeOut, kTap, kEarlier, kLater, kNewest, kReset, kLeave };

using Deed = std::variant<Key, Move>;

struct Binding {
    // A character, or the code that ncurses has for a key.
    int code;
    Deed deed;
    // What stands on the terminal's keyboard and what that does; at the first of several that belong together.
    std::string_view caption = {};
    std::string_view meaning = {};
};

[[nodiscard]] std::span<const Binding> key_map() noexcept;

// Small and capital letters do the same.
[[nodiscard]] std::optional<Deed> deed_of(int code) noexcept;

}  // namespace quorvel::sim

#endif
