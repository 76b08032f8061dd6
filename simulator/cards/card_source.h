// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDS_CARD_SOURCE_H
#define QUORVEL_SIMULATOR_CARDS_CARD_SOURCE_H

#include "simulator/cards/cards.h"
#include "wire/toml.h"

namespace quorvel::sim {

// The table that a card was read from.
struct Cards::Source {
    toml::table table;
};

}  // namespace quorvel::sim

#endif
