// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_AMOUNTS_COURSE_H
#define QUORVEL_SIMULATOR_AMOUNTS_COURSE_H

#include <array>
#include <cstdint>
#include <string_view>

namespace quorvel::sim {

// What the cents of an amount make of a payment; docs/amounts.md has the same table.
struct Course {
    enum class Way { kNone, kInsert, kTap, kSwipe };
    enum class Typing { kRight, kWrongOnce, kWrong, kCancels, kBypasses, kRemoves, kNothing };
    // Of a chip's two decisions.
    enum class Step { kNever, kFirst, kLast };

    struct Presented {
        Way way = Way::kNone;
        std::string_view card = {};
    };
    struct Trouble {
        Step step = Step::kNever;
        std::string_view fault = {};
        unsigned times = 1;
        unsigned milliseconds = 0;
    };

    unsigned cents = 0;
    std::string_view title;
    // The card, and what comes when the till asks again because that one was not taken.
    std::array<Presented, 2> cards{};
    Typing typing = Typing::kRight;
    Trouble trouble = {};
    // The card leaves between the two decisions.
    bool leaves = false;

    [[nodiscard]] constexpr const Presented& again() const { return cards[cards[1].way == Way::kNone ? 0 : 1]; }
};

namespace courses {
using enum Course::Way;
using enum Course::Typing;
using enum Course::Step;
using Two = std::array<Course::Presented, 2>;

inline constexpr Two kVisa{{{kInsert, "visa-chip"}}};
}  // namespace courses

// The first is also that of cents which are not in the table.
inline constexpr auto kCourses = [] {
    using namespace courses;
    return std::to_array<Course>({
        {0, "a chip with a PIN that the acquirer checks", kVisa},
        {1, "a chip that checks the PIN itself", {{{kInsert, "visa-offline-pin"}}}},
        {2, "a chip, and a signature", {{{kInsert, "visa-signature"}}}},
        {3, "a stripe", {{{kSwipe, "visa-magnetic"}}}},
        {10, "the chip declines at first", {{{kInsert, "refusing-chip"}}}},
        {11, "the chip declines in the end", {{{kInsert, "declining-chip"}}}},
        {20, "the card is removed while the PIN is typed", kVisa, kRemoves},
        {21, "the card is removed before the last decision", kVisa, kRight, {}, true},
        {30, "a wrong PIN, then the right one", {{{kInsert, "visa-offline-pin"}}}, kWrongOnce},
        {31, "the PIN is blocked", {{{kInsert, "visa-offline-pin"}}}, kWrong},
        {32, "the cardholder cancels", kVisa, kCancels},
        {33, "the cardholder types no PIN and signs", {{{kInsert, "visa-pin-or-signature"}}}, kBypasses},
        {34, "nobody types the PIN", kVisa, kNothing},
        {40, "nobody comes with a card", {}},
        {50, "the answer about the first decision is lost", kVisa, kRight, {kFirst, "no-answer"}},
        {51, "the answer about the last decision is lost", kVisa, kRight, {kLast, "no-answer"}},
        {52, "the answer about the last decision is damaged three times", kVisa, kRight, {kLast, "bad-crc", 3}},
        {53, "the answer about the last decision is five seconds late", kVisa, kRight, {kLast, "delay", 1, 5000}},
        {54, "the line is cut at the last decision, for a second", kVisa, kRight, {kLast, "hang-up", 1, 1000}},
        {60, "the tapped card is refused; a chip is inserted", {{{kTap, "refusing-contactless"}, kVisa[0]}}},
        {61, "the phone wants its owner's word, and is tapped again", {{{kTap, "phone"}}}},
        {62, "a tapped card, and its PIN", {{{kTap, "visa-contactless"}}}},
        {63, "the tapped card must be inserted", {{{kTap, "insert-only"}, {kInsert, "insert-only"}}}},
        {70, "the chip is mute; the stripe is swiped", {{{kInsert, "mute-chip"}, {kSwipe, "mute-chip"}}}},
        {71, "the chip is blocked", {{{kInsert, "blocked-chip"}}}},
        {72, "the chip is invalidated", {{{kInsert, "invalidated-chip"}}}},
        {73, "the card has expired", {{{kInsert, "expired-chip"}}}},
        {74, "a card from abroad", {{{kInsert, "foreign-chip"}}}},
    });
}();

// By the last two digits of an amount in cents.
[[nodiscard]] const Course& course_of(uint64_t amount) noexcept;

}  // namespace quorvel::sim

#endif
