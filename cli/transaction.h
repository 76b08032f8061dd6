// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_TRANSACTION_H
#define QUORVEL_CLI_TRANSACTION_H

#include <cstdint>
#include <optional>
#include <string>

#include "cli/items.h"
#include "cli/link.h"

namespace quorvel::cli {

// The steps of a card transaction. Each throws StatusError for any status but OK.

struct CardRequest {
    uint64_t amount = 0;
    uint16_t currency = 986;
    // Any, when there is none.
    std::optional<uint8_t> acquirer = {};
    bool contactless = true;
    uint8_t timeout = 60;
    // The card number whole, and not only its first six and last four digits.
    bool whole = false;
};

void read_card(Link& link, const CardRequest& request, Items& card);

// PP_CARDTYPE.
enum class CardType { kStripe = 0, kChip = 3, kContactlessStripe = 5, kContactless = 6 };

// Throws Error for a type that is none of them.
[[nodiscard]] CardType card_type(const Items& card);
[[nodiscard]] std::string card_type_words(CardType type);
[[nodiscard]] inline bool runs_emv(CardType type) { return type == CardType::kChip || type == CardType::kContactless; }

// What can be told of a card that was read.
[[nodiscard]] Group card_group(const Items& card);

struct GoRequest {
    uint64_t amount = 0;
    uint16_t currency = 986;
    uint8_t acquirer = 0;
    // From here on the acquirer is asked.
    uint32_t floorLimit = 0;
    AbecsSpeMthdPin_E pinMethod = ABECS_SPE_MTHD_PIN_DUKPT_TDES;
    uint8_t pinKey = 0;
};

void go_on_chip(Link& link, const GoRequest& request, Items& decision);

// Without a response code the acquirer was not reached.
void finish_chip(Link& link, const std::optional<std::string>& responseCode, Items& decision);

}  // namespace quorvel::cli

#endif
