// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/cards.h"

#include <fmt/format.h>
#include <stdexcept>

namespace quorvel::sim {

namespace {

constexpr std::string_view kStandardText =
#include "cards.toml.inc"
    ;

}  // namespace

const Cards::Entry& Cards::entry(std::string_view name) const {
    const auto found = cards_.find(name);
    if (found == cards_.end()) { throw std::out_of_range(fmt::format("there is no card \"{}\"", name)); }
    return found->second;
}

std::vector<std::string> Cards::names() const {
    std::vector<std::string> names;
    for (const auto& [name, entry] : cards_) { names.push_back(name); }
    return names;
}

void Cards::add(const Cards& more) {
    for (const auto& [name, entry] : more.cards_) { cards_.insert_or_assign(name, entry); }
}

const Cards& Cards::standard() {
    static const Cards kCards = from_toml(kStandardText);
    return kCards;
}

}  // namespace quorvel::sim
