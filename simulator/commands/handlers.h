// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_HANDLERS_H
#define QUORVEL_SIMULATOR_COMMANDS_HANDLERS_H

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "simulator/commands/command.h"

// One function for each command. It reads the whole request before it changes anything: what does not have its layout
// leaves as a LayoutError and is answered in one place.
namespace quorvel::sim::commands {

Outcome cex(Call& call);
Outcome chp(Call& call);
Outcome cke(Call& call);
Answer clo(Call& call);
Answer clx(Call& call);
Answer cng(Call& call);
Answer dex(Call& call);
Answer dmf(Call& call);
Answer dsi(Call& call);
Answer dsp(Call& call);
Answer dwk(Call& call);
Answer ebx(Call& call);
Answer enb(Call& call);
Answer fcx(Call& call);
Answer fnc(Call& call);
Outcome gcd(Call& call);
Outcome gcr(Call& call);
Outcome gcx(Call& call);
Answer gdu(Call& call);
Answer ged(Call& call);
Outcome gen(Call& call);
Answer gin(Call& call);
Answer gix(Call& call);
Outcome gky(Call& call);
Outcome goc(Call& call);
Outcome gox(Call& call);
Outcome gpn(Call& call);
Answer gtk(Call& call);
Answer gts(Call& call);
Answer lmf(Call& call);
Answer mle(Call& call);
Answer mli(Call& call);
Answer mlr(Call& call);
Outcome mnu(Call& call);
Answer opn(Call& call);
Outcome rmc(Call& call);
Answer tle(Call& call);
Answer tli(Call& call);
Answer tlr(Call& call);

// The host's text, or the PIN pad's own where it has none.
inline std::string text_or(const Call& call, const std::string& text, Text own) {
    return text.empty() ? call.device.text(own) : text;
}

// Answers a command that another one had to come before.
inline Answer out_of_sequence(Call& call, std::string fault) {
    call.journal.record(Finding{Finding::Kind::kSequence, std::move(fault)});
    return {.status = Status::kInvcall, .blocks = {}};
}

// What is loaded step by step: tables or a file.
template <typename Load>
[[nodiscard]] std::optional<Answer> unless_begun(Call& call, const Load& load, std::string_view command) {
    if (load.loading()) { return std::nullopt; }
    return out_of_sequence(call, std::string(command) + ": no load was begun");
}
template <typename Load>
Answer end_load(Call& call, Load& load, std::string_view command) {
    if (auto unfit = unless_begun(call, load, command)) { return *std::move(unfit); }
    call.request.end();
    load.end();
    return {};
}

}  // namespace quorvel::sim::commands

#endif
