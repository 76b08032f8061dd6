// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/recording/comparison.h"

#include <algorithm>
#include <fmt/format.h>
#include <stdexcept>

#include "wire/packet.h"
#include "wire/param_id.h"
#include "wire/tag.h"
#include "wire/words.h"

namespace quorvel::sim {

namespace {

using Items = std::vector<Item>;

bool has(const Items& items, const std::string& name) {
    return std::ranges::find(items, name, &Item::name) != items.end();
}

Items without(Items items, const Names& ignored) {
    std::erase_if(items, [&](const Item& item) { return ignored.contains(item.name); });
    return items;
}

std::string values_difference(const Item& recorded, const Item& came, const Names& ignored);

std::string lists_difference(const Items& recorded, const Items& came, const Names& ignored) {
    for (size_t i = 0; i < std::max(recorded.size(), came.size()); ++i) {
        if (i == came.size()) { return fmt::format("expected {}, which did not come", words_for(recorded[i])); }
        const bool unknown = i == recorded.size() || !has(recorded, came[i].name);
        if (unknown) { return fmt::format("got {}, where none was", words_for(came[i])); }
        if (recorded[i].name != came[i].name) {
            return fmt::format("expected {}, got {} there", words_for(recorded[i]), words_for(came[i]));
        }
        if (auto wrong = values_difference(recorded[i], came[i], ignored); !wrong.empty()) { return wrong; }
    }
    return "";
}

std::string values_difference(const Item& recorded, const Item& came, const Names& ignored) {
    if (recorded.value == came.value) { return ""; }
    if (recorded.parts.empty() || came.parts.empty()) {
        return fmt::format("expected {}, got {}", words_for(recorded), words_for(came));
    }
    const std::string inside =
        lists_difference(without(recorded.parts, ignored), without(came.parts, ignored), ignored);
    return inside.empty() ? "" : fmt::format("{}: {}", recorded.name, inside);
}

bool is_field(std::string_view name) {
    return std::ranges::any_of(wire::kAllCommands, [&](const wire::Command& command) {
        const auto fields = fields_of(command.id, Sender::kHost);
        return std::ranges::find(fields, name, &Field::name) != fields.end();
    });
}

bool is_tag(const std::string& name) {
    static constexpr size_t kLongest = 4;
    if (name.size() > kLongest || name.find_first_not_of("0123456789ABCDEF") != std::string::npos) { return false; }
    return !tag_name(static_cast<Tag>(std::stoul(name, nullptr, 16))).empty();
}

bool is_in_a_request(const std::string& name) {
    return !name.empty() && (find_param(name) || is_field(name) || is_tag(name));
}

}  // namespace

Names changing_values() {
    return {"SPE_TRNDATE", "SPE_TRNTIME", "GCR_DATE",  "GCR_TIME",  "OPN_MOD", "OPN_EXP", "SPE_PBKMOD", "SPE_PBKEXP",
            "SPE_WKENC",   "ENB_WKENC",   "GOC_WKENC", "GPN_WKENC", "9A",      "9F21",    "9F37",       "9F41"};
}

void require_known(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        if (!is_in_a_request(name)) { throw std::invalid_argument(fmt::format("no request has a \"{}\"", name)); }
    }
}

std::string difference(ByteView recorded, ByteView came, const Names& ignored) {
    const Packet due = take_apart(Sender::kHost, recorded);
    const Packet got = take_apart(Sender::kHost, came);
    if (due.id != got.id) { return fmt::format("expected {}, got {}", request_words(recorded), request_words(came)); }
    const std::string wrong = lists_difference(without(due.items, ignored), without(got.items, ignored), ignored);
    return wrong.empty() ? "" : fmt::format("{}: {}", due.id, wrong);
}

}  // namespace quorvel::sim
