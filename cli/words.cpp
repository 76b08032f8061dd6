// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/words.h"

#include <algorithm>
#include <fmt/format.h>
#include <string>

#include "cli/items.h"
#include "wire/words.h"

namespace quorvel::cli {

namespace {

// Where a name comes more than once, JSON needs another key for each.
Group fields_of(const std::vector<wire::Item>& items) {
    Group fields;
    for (const wire::Item& item : items) {
        const std::string name = item.name.empty() ? "rest" : item.name;
        const auto same = std::ranges::count(fields, name, &Field::label);
        std::string key = same == 0 ? name : fmt::format("{}#{}", name, same + 1);
        fields.push_back({name, value_of(item), std::move(key)});
    }
    return fields;
}

void add_contents(Group& to, const std::vector<wire::Item>& items) {
    if (items.empty()) { return; }
    const bool broken = items.size() == 1 && items.front().name.empty();
    to.push_back({"Contents", broken ? value_of(items.front()) : Value(fields_of(items))});
}

Value name_of(const wire::Packet& packet) {
    if (packet.command != nullptr) { return fmt::format("{} {}", packet.id, packet.command->title); }
    return wire::looks_like_id(packet.id) ? Value(fmt::format("{} unknown", packet.id)) : Value(Secret{packet.id});
}

}  // namespace

Group packet_words(wire::Sender sender, std::span<const uint8_t> packet) {
    const wire::Packet apart = wire::take_apart(sender, packet);
    if (sender == wire::Sender::kPinPad && !apart.status) {
        return {{"What", "no response"}, {"Contents", Secret{std::string(packet.begin(), packet.end())}}};
    }
    Group words{{"What", name_of(apart)}};
    if (apart.status) { words.push_back({"Status", Status{*apart.status}}); }
    add_contents(words, apart.items);
    return words;
}

Group words(wire::Sender sender, const wire::Reception& reception) {
    const wire::Frame& frame = reception.frame;
    if (reception.kind != wire::Reception::Kind::kFrame || frame.encrypted) {
        return {{"What", wire::reception_words(reception)}};
    }
    return packet_words(sender, frame.data);
}

}  // namespace quorvel::cli
