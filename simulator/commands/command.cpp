// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/command.h"

#include <algorithm>
#include <array>
#include <exception>
#include <fmt/format.h>

#include "simulator/commands/handlers.h"
#include "wire/param_id.h"

namespace quorvel::sim {

namespace {

using Form = Command::Form;
using Privacy = Command::Privacy;
using Session = Command::Session;

constexpr std::array table{
    Command{"CEX", "wait for an event", Form::params, commands::cex},
    Command{"CHP", "access to a chip", Form::fields, commands::chp, Session::stays, Privacy::withheld},
    Command{"CKE", "wait for an event", Form::fields, commands::cke, Session::stays, Privacy::withheld},
    Command{"CLO", "close the session", Form::fields, commands::clo, Session::ends},
    Command{"CLX", "close the session", Form::params, commands::clx, Session::ends},
    Command{"CNG", "change EMV data", Form::fields, commands::cng, Session::stays, Privacy::withheld},
    Command{"DEX", "show a long message", Form::fields, commands::dex},
    Command{"DMF", "delete media files", Form::params, commands::dmf},
    Command{"DSI", "show a media file", Form::params, commands::dsi},
    Command{"DSP", "show a message", Form::fields, commands::dsp},
    Command{"DWK", "load a PAN working key", Form::fields, commands::dwk, Session::stays, Privacy::withheld},
    Command{"EBX", "encipher data", Form::params, commands::ebx, Session::stays, Privacy::withheld},
    Command{"ENB", "encipher a block", Form::fields, commands::enb, Session::stays, Privacy::withheld},
    Command{"FCX", "finish with the chip", Form::params, commands::fcx, Session::stays, Privacy::withheld},
    Command{"FNC", "finish with the chip", Form::fields, commands::fnc, Session::stays, Privacy::withheld},
    Command{"GCD", "ask for a number", Form::params, commands::gcd},
    Command{"GCR", "read a card", Form::fields, commands::gcr, Session::stays, Privacy::withheld},
    Command{"GCX", "read a card", Form::params, commands::gcx, Session::stays, Privacy::withheld},
    Command{"GDU", "serial number of a DUKPT key", Form::fields, commands::gdu},
    Command{"GED", "EMV data", Form::params, commands::ged, Session::stays, Privacy::withheld},
    Command{"GEN", "generic command", Form::fields, commands::gen, Session::stays, Privacy::withheld},
    Command{"GIN", "device information", Form::fields, commands::gin},
    Command{"GIX", "device information", Form::params, commands::gix},
    Command{"GKY", "wait for a key", Form::fields, commands::gky},
    Command{"GOC", "go on with the chip", Form::fields, commands::goc, Session::stays, Privacy::withheld},
    Command{"GOX", "go on with the chip", Form::params, commands::gox, Session::stays, Privacy::withheld},
    Command{"GPN", "ask for a PIN", Form::fields, commands::gpn, Session::stays, Privacy::withheld},
    Command{"GTK", "tracks of the last card", Form::params, commands::gtk, Session::stays, Privacy::withheld},
    Command{"GTS", "version of the tables", Form::fields, commands::gts},
    Command{"LMF", "list media files", Form::params, commands::lmf},
    Command{"MLE", "end the load of a media file", Form::params, commands::mle},
    Command{"MLI", "begin the load of a media file", Form::params, commands::mli},
    Command{"MLR", "a media file's next bytes", Form::params, commands::mlr},
    Command{"MNU", "show a menu", Form::params, commands::mnu},
    Command{"OPN", "open a session", Form::fields, commands::opn},
    Command{"RMC", "wait until the card is removed", Form::fields, commands::rmc},
    Command{"TLE", "end the load of tables", Form::fields, commands::tle},
    Command{"TLI", "begin the load of tables", Form::fields, commands::tli},
    Command{"TLR", "records of tables", Form::fields, commands::tlr},
};
static_assert(std::ranges::adjacent_find(table, std::ranges::greater_equal{}, &Command::id) == table.end(),
              "sorted and unique");

constexpr size_t maxBlocks = 2;

Answer failure(const Command& command, Journal& journal) {
    try {
        throw;
    } catch (const LayoutError& error) {
        journal.record(Finding{Finding::Kind::layout, error.what()});
        return {.status = error.status(), .blocks = {}};
    } catch (const std::exception& error) {
        journal.record(Finding{Finding::Kind::internal, fmt::format("{}: {}", command.id, error.what())});
        return {.status = Status::interr, .blocks = {}};
    }
}

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
