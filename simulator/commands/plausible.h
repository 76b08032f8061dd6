// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_PLAUSIBLE_H
#define QUORVEL_SIMULATOR_COMMANDS_PLAUSIBLE_H

#include <string_view>

#include "simulator/commands/command.h"
#include "wire/tlv.h"

// What no till can mean. It is found, and answered as if nothing were the matter.
namespace quorvel::sim::commands {

// When the host says that it is: an impossible date or time, or one far from the PIN pad's own clock.
void judge_moment(Call& call, std::string_view command, ByteView date, ByteView time);

// Amounts and currency of the command, against what the parameter with data objects of the same command says.
void judge_twins(Call& call, std::string_view command, const DataObjects& told, const DataObjects& beside);

// Against what the transaction was begun with. What it was not told until now, or as zero, it knows from now on.
void judge_money(Call& call, std::string_view command, const DataObjects& told);

// Against the acquirer for whom the card's application was selected.
void judge_acquirer(Call& call, std::string_view command, unsigned acquirer);

}  // namespace quorvel::sim::commands

#endif
