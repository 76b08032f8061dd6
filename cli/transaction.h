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

struct CardRequest {
    uint64_t amount = 0;
    uint16_t currency = 986;
    // Any, when there is none.
    std::optional<uint8_t> acquirer = {};
    bool contactless = true;
    std::chrono::seconds timeout{60};
    // The card number whole, and not only its first six and last four digits.
    bool whole = false;
};

// Throws StatusError for any status but OK, and Error for a card of a kind that is not known.
[[nodiscard]] CardAnswer read_card(Link& link, const CardRequest& request);

inline constexpr std::string_view kRemoved = "removed";

// Asks for a card that is in the reader, if one is, to be taken out. Returns what came of it. Once the user has had
// enough it asks for a moment only.
[[nodiscard]] std::string have_card_removed(Link& link, const std::string& message, std::chrono::seconds timeout);

[[nodiscard]] std::string card_type_words(CardType type);
[[nodiscard]] inline bool runs_emv(CardType type) { return type == CardType::chip || type == CardType::contactless; }

// What can be told of a card that was read.
[[nodiscard]] Group card_group(const CardAnswer& card);

}  // namespace quorvel::cli

#endif
