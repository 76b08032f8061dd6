// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDS_RISK_H
#define QUORVEL_SIMULATOR_CARDS_RISK_H

#include <cstdint>

#include "simulator/cards/action_codes.h"
#include "simulator/cards/card.h"
#include "wire/tlv.h"

namespace quorvel::sim {

// Has the protocol's numbers.
enum class Decision { kApproved = 0, kDeclined = 1, kOnline = 2 };

// What the host says about the first decision. Percentages of the random selection are of 99.
struct Risk {
    bool onExceptionList = false;
    bool canGoOnline = true;
    // Without it the amount does not matter, only the card does.
    bool managed = false;
    // The host leaves the limits to the tables.
    bool byTable = false;
    uint64_t amount = 0;
    uint64_t floorLimit = 0;
    unsigned targetPercentage = 0;
    uint64_t threshold = 0;
    unsigned maxPercentage = 0;
};

// How the cardholder came through.
struct Verified {
    bool pinOnline = false;
    bool pinOffline = false;
    bool signature = false;
    bool failed = false;
    bool pinBlocked = false;
    bool pinBypassed = false;
    bool unknownMethod = false;
    int pinErrors = 0;
};

// Below the threshold the target percentage of transactions goes online; from there the share grows evenly up to the
// maximum at the floor limit. `draw` is a number from 1 to 99.
[[nodiscard]] bool selected_at_random(const Risk& risk, unsigned draw);

// Also marks its grounds in the terminal verification results, by which and by the codes it is made.
[[nodiscard]] Decision first_decision(const Risk& risk, const Verified& verified, Chip::First wish, unsigned draw,
                                      DataObjects& objects, const ActionCodes& codes = ActionCodes::of_card({}));

// What the issuer said, if it could be asked.
enum class Issuer { kApproved, kDeclined, kUnreachable };

// After the issuer; has the protocol's numbers.
enum class FinalDecision { kApproved = 0, kDeclinedByCard = 1, kDeclinedByIssuer = 2 };

// `denied` is what the card and the terminal say of one whose issuer cannot be asked.
[[nodiscard]] FinalDecision final_decision(Issuer issuer, Chip::Second wish, bool denied = true);

}  // namespace quorvel::sim

#endif
