// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/command.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

#include "simulator/commands/handlers.h"
#include "simulator/param_id.h"

namespace quorvel::sim {

namespace {

using Form = Command::Form;

constexpr std::array table{
    Command{"CLO", "close the session", Form::fields, commands::clo},
    Command{"CLX", "close the session", Form::params, commands::clx},
    Command{"GIN", "device information", Form::fields, commands::gin},
    Command{"GIX", "device information", Form::params, commands::gix},
    Command{"OPN", "open a session", Form::fields, commands::opn},
};
static_assert(std::ranges::adjacent_find(table, std::ranges::greater_equal{}, &Command::id) == table.end(),
              "sorted and unique");

constexpr size_t maxBlocks = 2;

}  // namespace

Answer Answer::of(std::span<const Param> params) {
    if (params.empty()) return {};
    std::vector<Writer> blocks(1);
    for (const Param& param : params) {
        if (blocks.back().bytes().size() + paramHead + param.data.size() > maxBlock) blocks.emplace_back();
        blocks.back().param(param);
    }
    const bool fit = blocks.size() <= maxBlocks && std::ranges::all_of(blocks, [](const Writer& block) {
                         return block.bytes().size() <= maxBlock;
                     });
    if (!fit) return {.status = Status::rspovrfl, .blocks = {}};
    Answer answer;
    for (const Writer& block : blocks) answer.blocks.push_back(block.bytes());
    return answer;
}

LayoutError out_of_place(std::string_view command, uint16_t param) {
    return LayoutError(fmt::format("{}: {} 0x{:04X} has no place in it", command, param_name(param), param));
}

const Command* find_command(std::string_view id) noexcept {
    const auto* found = std::ranges::lower_bound(table, id, {}, &Command::id);
    return found != table.end() && found->id == id ? found : nullptr;
}

Bytes response_packet(std::string_view id, const Answer& answer) {
    Writer packet;
    packet.a(id, 3).n(static_cast<unsigned>(answer.status), 3);
    for (const Bytes& block : answer.blocks) packet.n(block.size(), 3).b(block);
    return packet.bytes();
}

}  // namespace quorvel::sim
