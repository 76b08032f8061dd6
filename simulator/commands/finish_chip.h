// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_FINISH_CHIP_H
#define QUORVEL_SIMULATOR_COMMANDS_FINISH_CHIP_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "simulator/cards/risk.h"
#include "simulator/commands/command.h"

// What FNC and FCX have in common: the issuer's answer goes to the chip, and the final decision is made.
namespace quorvel::sim::commands {

struct FinishRequest {
    // Two characters; none when the issuer could not be reached.
    std::optional<std::string> responseCode;
    std::vector<std::pair<Tag, Bytes>> issuerData = {};
};

struct Finished {
    FinalDecision decision = FinalDecision::kDeclinedByCard;
    // Five bytes for each script: how it went, and its identifier.
    Bytes scriptResults = {};
    DataObjects objects = {};
};

// Throws LayoutError for a code that is not of two letters or digits.
[[nodiscard]] std::string response_code(Reader& fields, std::string_view field);

// Needs a transaction that has asked for the issuer and for which unfit_transaction() finds nothing.
[[nodiscard]] Finished finish_chip(Device& device, const FinishRequest& request);

// The answer, with what the cardholder is told of the decision.
[[nodiscard]] Answer finished_answer(const Device& device, const Finished& finished, Answer answer);

}  // namespace quorvel::sim::commands

#endif
