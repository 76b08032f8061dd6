// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_GO_ON_CHIP_H
#define QUORVEL_SIMULATOR_COMMANDS_GO_ON_CHIP_H

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "simulator/cards/risk.h"
#include "simulator/commands/command.h"
#include "simulator/device/transaction.h"
#include "simulator/keys/pin_block.h"

// What GOC and GOX have in common: the cardholder is verified and the first decision made.
namespace quorvel::sim::commands {

struct GoRequest {
    Risk risk;
    PinKey key;
    // Empty for the PIN pad's own.
    std::string message = {};
    DataObjects objects = {};
};

struct Gone {
    Decision decision = Decision::kDeclined;
    Verified verified;
    // Of the online PIN.
    std::optional<PinBlock> pin = {};
    DataObjects objects = {};
};

using GoAnswer = std::function<Answer(const Gone&)>;

// The answer to a command for which there is no transaction at that stage, or whose chip has left the reader.
[[nodiscard]] std::optional<Answer> unfit_transaction(Call& call, Transaction::Stage stage, std::string_view command);

// Needs a transaction for which unfit_transaction() finds nothing.
[[nodiscard]] Outcome go_on_chip(Call& call, GoRequest request, std::optional<std::chrono::seconds> limit,
                                 GoAnswer answer);

}  // namespace quorvel::sim::commands

#endif
