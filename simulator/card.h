// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARD_H
#define QUORVEL_SIMULATOR_CARD_H

#include <optional>
#include <string>

#include "simulator/chip.h"

namespace quorvel::sim {

// A card that the cardholder has in the hand.
struct Card {
    std::string pan;
    // As they stand on the stripe, without sentinels and check character; a track that the card does not have is empty.
    std::string track1 = {};
    std::string track2 = {};
    std::string track3 = {};
    std::optional<Chip> chip = {};
};

}  // namespace quorvel::sim

#endif
