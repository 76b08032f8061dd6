// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_EMV_PARAMS_H
#define QUORVEL_SIMULATOR_COMMANDS_EMV_PARAMS_H

#include <optional>
#include <string>
#include <vector>

#include "simulator/commands/command.h"
#include "simulator/commands/params.h"
#include "wire/tlv.h"

// Parameters that GCX, GOX, FCX and GED share.
namespace quorvel::sim::commands {

// The whole of SPE_EMVDATA, SPE_TAGLIST, SPE_DSPMSG, and of those with two digits.
[[nodiscard]] DataObjects emv_data(Reader& value);
[[nodiscard]] std::vector<Tag> tag_list(Reader& value);
[[nodiscard]] std::string message(Reader& value);
[[nodiscard]] unsigned two_digits(Reader& value);

// What the host tells of the transaction: SPE_EMVDATA, then the amounts, the type and the currency.
[[nodiscard]] DataObjects transaction_objects(const Params& params);

// The answer with the objects of the list, if there is a list, as PP_EMVDATA behind the other parameters.
[[nodiscard]] Answer with_emv_data(std::vector<Param> params, const DataObjects& objects,
                                   const std::optional<std::vector<Tag>>& tags);

}  // namespace quorvel::sim::commands

#endif
