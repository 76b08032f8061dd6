// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_EXAM_CASES_H
#define QUORVEL_SIMULATOR_EXAM_CASES_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/cards/cards.h"
#include "simulator/exam/exam_case.h"

// What the chapters have in common.
namespace quorvel::sim::exam {

inline const CommandIds kReading{"GCX", "GCR"};
inline const CommandIds kDeciding{"GOX", "GOC"};
inline const CommandIds kFinishing{"FCX", "FNC"};
inline const CommandIds kClosing{"CLO", "CLX"};
inline const CommandIds kRemoving{"RMC"};

inline const Outcomes kMustBePaid{Outcome::kPaid};

[[nodiscard]] inline const Card& card(std::string_view name) { return Cards::standard().at(name); }
[[nodiscard]] inline Gestures inserted(const Card& card) { return Gestures().insert(card); }
[[nodiscard]] inline Gestures inserted(std::string_view name) { return inserted(card(name)); }
[[nodiscard]] inline Gestures typed(std::string_view pin) { return Gestures().type(pin); }

// A chip that asks for no PIN.
[[nodiscard]] inline Person with_chip() { return {.cards = {inserted("visa-signature")}}; }
[[nodiscard]] inline Person with_pin() { return {.cards = {inserted("visa-chip")}, .entries = {typed("1234")}}; }

// A family of cases, which are numbered in the order in which they are added.
class Family {
public:
    Family(std::vector<Case>& all, unsigned chapter, unsigned family) : all_(all), number_{chapter, family, 0} {}

    Case& add(std::string title, std::string why, std::string must) {
        ++number_.item;
        all_.push_back({.number = number_, .title = std::move(title), .why = std::move(why), .must = std::move(must)});
        return all_.back();
    }
    // Leaves a number out.
    void skip() { ++number_.item; }

private:
    std::vector<Case>& all_;
    Number number_;
};

// A chip card is there, without a PIN.
inline Case& by_chip(Case& each) {
    each.needs.insert(Feature::kChip);
    each.person = with_chip();
    return each;
}
inline Case& by_pin(Case& each) {
    each.needs.insert({Feature::kChip, Feature::kPin});
    each.person = with_pin();
    return each;
}

// The same for each of the commands, as a till has one or the other.
inline void strike(Case& each, const CommandIds& commands, const Fault& fault) {
    for (const std::string& id : commands) {
        Fault own = fault;
        own.command = id;
        each.faults.push_back(std::move(own));
    }
}

void add_good_sales(std::vector<Case>& all);
void add_line_troubles(std::vector<Case>& all);
void add_refusals(std::vector<Case>& all);
void add_people(std::vector<Case>& all);
void add_cards(std::vector<Case>& all);
void add_acquirers(std::vector<Case>& all);
void add_stops(std::vector<Case>& all);
void add_tables(std::vector<Case>& all);
void add_ports(std::vector<Case>& all);
void add_encrypted(std::vector<Case>& all);

}  // namespace quorvel::sim::exam

#endif
