// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDHOLDER_EVENT_H
#define QUORVEL_SIMULATOR_CARDHOLDER_EVENT_H

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "simulator/cards/card.h"

namespace quorvel::sim {

// Keys that have a code of the protocol's have it as their value; digits have their character.
enum class Key {
    kEnter = 0,
    kUp = 2,
    kDown = 3,
    kF1 = 4,
    kF2 = 5,
    kF3 = 6,
    kF4 = 7,
    kClear = 8,
    kCancel = 13,
    kDigit0 = '0',
    kDigit9 = '9',
};

[[nodiscard]] constexpr bool is_digit(Key key) noexcept { return key >= Key::kDigit0 && key <= Key::kDigit9; }
[[nodiscard]] constexpr Key digit(char character) noexcept { return static_cast<Key>(character); }

struct KeyPressed {
    Key key;
};
struct CardSwiped {
    Card card;
};
struct CardInserted {
    Card card;
};
struct CardRemoved {};
struct CardTapped {
    Card card;
};
// Not the cardholder's doing: what the PIN pad tells the host in between.
struct Notice {
    std::string text;
};

using Event = std::variant<KeyPressed, CardSwiped, CardInserted, CardRemoved, CardTapped, Notice>;

// What a cardholder does, one thing after the other: Gestures().insert(card).press(Key::kEnter).
class Gestures {
public:
    Gestures& press(Key key) { return add(KeyPressed{key}); }
    Gestures& swipe(Card card) { return add(CardSwiped{std::move(card)}); }
    Gestures& insert(Card card) { return add(CardInserted{std::move(card)}); }
    Gestures& remove() { return add(CardRemoved{}); }
    Gestures& tap(Card card) { return add(CardTapped{std::move(card)}); }
    Gestures& notify(std::string text) { return add(Notice{std::move(text)}); }

    // Digits, then enter.
    Gestures& type(std::string_view digits) {
        for (const char character : digits) { press(digit(character)); }
        return press(Key::kEnter);
    }

    // Goes down to an option of a menu, counted from 1.
    Gestures& choose(int option) {
        for (int i = 1; i < option; ++i) { press(Key::kDown); }
        return press(Key::kEnter);
    }

    [[nodiscard]] const std::vector<Event>& events() const noexcept { return events_; }

private:
    // Not by way of an Event, in which g++ 12 takes the members of other alternatives for uninitialised.
    template <typename Kind>
    Gestures& add(Kind event) {
        events_.emplace_back(std::move(event));
        return *this;
    }

    std::vector<Event> events_;
};

}  // namespace quorvel::sim

#endif
