// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/command.h"

#include <algorithm>
#include <array>
#include <exception>
#include <fmt/format.h>

#include "simulator/commands/handlers.h"
#include "wire/command.h"
#include "wire/param_id.h"

namespace quorvel::sim {

namespace {

using Session = Command::Session;

constexpr std::array kTable{
    Command{"CEX", commands::cex},
    Command{"CHP", commands::chp},
    Command{"CKE", commands::cke},
    Command{"CLO", commands::clo, Session::kEnds},
    Command{"CLX", commands::clx, Session::kEnds},
    Command{"CNG", commands::cng},
    Command{"DEX", commands::dex},
    Command{"DMF", commands::dmf},
    Command{"DSI", commands::dsi},
    Command{"DSP", commands::dsp},
    Command{"DWK", commands::dwk},
    Command{"EBX", commands::ebx},
    Command{"ENB", commands::enb},
    Command{"FCX", commands::fcx},
    Command{"FNC", commands::fnc},
    Command{"GCD", commands::gcd},
    Command{"GCR", commands::gcr},
    Command{"GCX", commands::gcx},
    Command{"GDU", commands::gdu},
    Command{"GED", commands::ged},
    Command{"GEN", commands::gen},
    Command{"GIN", commands::gin},
    Command{"GIX", commands::gix},
    Command{"GKY", commands::gky},
    Command{"GOC", commands::goc},
    Command{"GOX", commands::gox},
    Command{"GPN", commands::gpn},
    Command{"GTK", commands::gtk},
    Command{"GTS", commands::gts},
    Command{"LMF", commands::lmf},
    Command{"MLE", commands::mle},
    Command{"MLI", commands::mli},
    Command{"MLR", commands::mlr},
    Command{"MNU", commands::mnu},
    Command{"OPN", commands::opn, Session::kOpens},
    Command{"RMC", commands::rmc},
    Command{"TLE", commands::tle},
    Command{"TLI", commands::tli},
    Command{"TLR", commands::tlr},
};
static_assert(std::ranges::adjacent_find(kTable, std::ranges::greater_equal{}, &Command::id) == kTable.end(),
              "sorted and unique");
static_assert(std::ranges::all_of(kTable,
                                  [](const Command& each) {
                                      return std::ranges::find(wire::kAllCommands, each.id, &wire::Command::id)
                                             != wire::kAllCommands.end();
                                  }),
              "known by name");

constexpr size_t kMaxBlocks = 2;

Answer failure(const Command& command, Journal& journal) {
    try {
        throw;
    } catch (const LayoutError& error) {
        journal.record(Finding{Finding::Kind::kLayout, error.what()});
        return {.status = error.status(), .blocks = {}};
    } catch (const std::exception& error) {
        journal.record(Finding{Finding::Kind::kInternal, fmt::format("{}: {}", command.id, error.what())});
        return {.status = Status::kInterr, .blocks = {}};
    }
}

}  // namespace

Answer Answer::of(std::span<const Param> params) {
    if (params.empty()) { return {}; }
    std::vector<Writer> blocks(1);
    for (const Param& param : params) {
        if (blocks.back().bytes().size() + kParamHead + param.data.size() > kMaxBlock) { blocks.emplace_back(); }
        blocks.back().param(param);
    }
    const bool fit = blocks.size() <= kMaxBlocks && std::ranges::all_of(blocks, [](const Writer& block) {
                         return block.bytes().size() <= kMaxBlock;
                     });
    if (!fit) { return {.status = Status::kRspovrfl, .blocks = {}}; }
    Answer answer;
    for (const Writer& block : blocks) { answer.blocks.push_back(block.bytes()); }
    return answer;
}

Outcome run(const Command& command, Call& call) {
    try {
        return std::visit([&](auto handle) -> Outcome { return handle(call); }, command.handle);
    } catch (...) { return failure(command, call.journal); }
}

std::optional<Answer> resume(const Command& command, const Wait& wait, const Event& event, Journal& journal) {
    try {
        return wait.on(event);
    } catch (...) { return failure(command, journal); }
}

Reader only_block(Call& call) {
    Reader fields = call.request.block("CMD_LEN1");
    call.request.end();
    return fields;
}

LayoutError out_of_place(std::string_view command, uint16_t param) {
    return LayoutError(fmt::format("{}: {} 0x{:04X} has no place in it", command, param_name(param), param));
}

const Command* find_command(std::string_view id) noexcept {
    const auto* found = std::ranges::lower_bound(kTable, id, {}, &Command::id);
    return found != kTable.end() && found->id == id ? found : nullptr;
}

Bytes response_packet(std::string_view id, const Answer& answer) {
    Writer packet;
    packet.a(id, 3).n(static_cast<unsigned>(answer.status), 3);
    for (const Bytes& block : answer.blocks) { packet.n(block.size(), 3).b(block); }
    return packet.bytes();
}

}  // namespace quorvel::sim
