// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_CARD_READING_H
#define QUORVEL_SIMULATOR_COMMANDS_CARD_READING_H

#include <chrono>
#include <functional>
#include <optional>

#include "simulator/commands/command.h"
#include "simulator/device/transaction.h"

// What GCR and GCX have in common: both wait for a card and only lay out their answers differently.
namespace quorvel::sim::commands {

// Has the protocol's numbers.
enum class CardType { kStripe = 0, kChip = 3, kContactlessStripe = 5, kContactless = 6 };

struct CardRead {
    CardType type = CardType::kStripe;
    ChipReading lastChip = ChipReading::kGood;
    Card card;
    // None for a stripe.
    std::optional<Application> application = {};
    // What the chip or the antenna told, and the host before it.
    DataObjects objects = {};
};

using CardAnswer = std::function<Answer(const CardRead&)>;

// Takes the card that comes, or the one whose chip is in the reader already.
[[nodiscard]] Outcome read_card(Call& call, CardRequest request, std::optional<std::chrono::seconds> limit,
                                CardAnswer answer);

}  // namespace quorvel::sim::commands

#endif
