// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/words.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fmt/format.h>
#include <string>
#include <string_view>

#include "cli/items.h"
#include "simulator/commands/command.h"
#include "wire/fields.h"
#include "wire/param_id.h"

namespace quorvel::cli {

namespace {

using Bytes = std::span<const uint8_t>;

constexpr size_t idWidth = 3;
constexpr size_t statusWidth = 3;

// Of the commands made of fields those that carry nothing private in either direction; all others are withheld.
constexpr std::array<std::string_view, 11> openFields{"CLO", "DEX", "DSP", "GDU", "GIN", "GTS",
                                                      "NTM", "RMC", "TLE", "TLI", "TLR"};
static_assert(std::ranges::is_sorted(openFields));

std::string text_of(Bytes bytes) { return {bytes.begin(), bytes.end()}; }

Value fields_words(std::string_view id, Bytes blocks) {
    std::string text;
    for (sim::Reader reader("", blocks); reader.left() != 0;) {
        sim::Reader block = reader.block("");
        const sim::Bytes inside = block.b("", block.left());
        const std::string padded = text_of(inside);
        text += (text.empty() ? "" : " | ") + padded.substr(0, padded.find_last_not_of(' ') + 1);
    }
    if (std::ranges::binary_search(openFields, id)) return text;
    return Secret{text};
}

Value params_words(Bytes blocks) {
    Group fields;
    for (const sim::Param& param : sim::Reader("", blocks).params()) {
        std::string name = sim::param_name(param.id);
        if (name == "parameter") name = fmt::format("0x{:04X}", param.id);
        // Where an id comes more than once, JSON needs another key for each.
        const auto same = std::ranges::count(fields, name, &Field::label);
        std::string key = same == 0 ? name : fmt::format("{}#{}", name, same + 1);
        fields.push_back({name, parameter_value(param.id, param.data), std::move(key)});
    }
    return fields;
}

// What breaks its layout may hold anything.
void add_contents(Group& to, std::string_view id, Bytes blocks) {
    if (blocks.empty()) return;
    const sim::Command* command = sim::find_command(id);
    try {
        const bool params = command != nullptr && command->form == sim::Command::Form::params;
        to.push_back({"Contents", params ? params_words(blocks) : fields_words(id, blocks)});
    } catch (const sim::LayoutError&) { to.push_back({"Contents", Secret{text_of(blocks)}}); }
}

// Whatever has no command's id may be the middle of anything.
Value name_of(std::string_view id) {
    if (const sim::Command* command = sim::find_command(id)) return fmt::format("{} {}", id, command->title);
    if (id == "NTM") return "NTM notification";
    if (id == "ERR") return "ERR error";
    const bool plausible = std::ranges::all_of(id, [](char c) { return c >= 'A' && c <= 'Z'; });
    return plausible ? Value(fmt::format("{} unknown", id)) : Value(Secret{std::string(id)});
}

}  // namespace

Group request_words(Bytes packet) {
    const std::string id = text_of(packet.first(std::min(packet.size(), idWidth)));
    Group words{{"What", name_of(id)}};
    add_contents(words, id, packet.subspan(id.size()));
    return words;
}

Group response_words(Bytes packet) {
    const std::string head = text_of(packet.first(std::min(packet.size(), idWidth + statusWidth)));
    const std::string id = head.substr(0, idWidth);
    int status = 0;
    const auto [end, error] = std::from_chars(head.data() + id.size(), head.data() + head.size(), status);
    if (head.size() < idWidth + statusWidth || error != std::errc() || end != head.data() + head.size()) {
        return {{"What", "no response"}, {"Contents", Secret{text_of(packet)}}};
    }
    Group words{{"What", name_of(id)}, {"Status", Status{status}}};
    add_contents(words, id, packet.subspan(head.size()));
    return words;
}

Group words(sim::Sender sender, const sim::Reception& reception) {
    if (reception.kind != sim::Reception::Kind::frame) return {{"What", sim::reception_words(reception)}};
    const sim::Frame& frame = reception.frame;
    if (frame.encrypted) return {{"What", fmt::format("encrypted frame, {} bytes", frame.data.size())}};
    return sender == sim::Sender::host ? request_words(frame.data) : response_words(frame.data);
}

}  // namespace quorvel::cli
