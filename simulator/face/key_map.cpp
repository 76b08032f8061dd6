// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/face/key_map.h"

#include <algorithm>
#include <array>

#define NCURSES_NOMACROS
#include <curses.h>

namespace quorvel::sim {

namespace {

constexpr int kEscape = 0x1B;
constexpr int kRubOut = 0x7F;

// Terminals do not agree on what enter and backspace send, and some keep function keys for themselves.
constexpr std::array kBindings{
    Binding{'0', digit('0'), "0-9", "digits"},
    Binding{'1', digit('1')},
    Binding{'2', digit('2')},
    Binding{'3', digit('3')},
    Binding{'4', digit('4')},
    Binding{'5', digit('5')},
    Binding{'6', digit('6')},
    Binding{'7', digit('7')},
    Binding{'8', digit('8')},
    Binding{'9', digit('9')},
    Binding{'\r', Key::kEnter, "Enter", "ENTER"},
    Binding{'\n', Key::kEnter},
    Binding{KEY_ENTER, Key::kEnter},
    Binding{KEY_BACKSPACE, Key::kClear, "Bksp", "CLEAR"},
    Binding{kRubOut, Key::kClear},
    Binding{'\b', Key::kClear},
    Binding{KEY_DC, Key::kClear},
    Binding{kEscape, Key::kCancel, "Esc", "CANCEL"},
    Binding{KEY_F(1), Key::kF1, "F1-F4", "F1-F4, also a-d"},
    Binding{KEY_F(2), Key::kF2},
    Binding{KEY_F(3), Key::kF3},
    Binding{KEY_F(4), Key::kF4},
    Binding{'a', Key::kF1},
    Binding{'b', Key::kF2},
    Binding{'c', Key::kF3},
    Binding{'d', Key::kF4},
    Binding{KEY_UP, Key::kUp, "Up Dn", "UP, DOWN"},
    Binding{KEY_DOWN, Key::kDown},
    Binding{KEY_LEFT, Move::kPreviousCard, "Lt Rt", "take a card"},
    Binding{KEY_RIGHT, Move::kNextCard},
    Binding{'s', Move::kSwipe, "s", "swipe it"},
    Binding{'i', Move::kInsertOrTakeOut, "i", "insert, take out"},
    Binding{'t', Move::kTap, "t", "tap it"},
    Binding{KEY_PPAGE, Move::kEarlier, "PgUp", "earlier trace"},
    Binding{KEY_NPAGE, Move::kLater, "PgDn", "later, End: last"},
    Binding{KEY_END, Move::kNewest},
    Binding{'r', Move::kReset, "r", "reset"},
    Binding{'q', Move::kLeave, "q", "switch off"},
};

}  // namespace

std::span<const Binding> key_map() noexcept { return kBindings; }

std::optional<Deed> deed_of(int code) noexcept {
    if (code >= 'A' && code <= 'Z') { code += 'a' - 'A'; }
    const auto* found = std::ranges::find(kBindings, code, &Binding::code);
    return found != kBindings.end() ? std::optional(found->deed) : std::nullopt;
}

}  // namespace quorvel::sim
