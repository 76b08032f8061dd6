// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CONTROL_CARD_JSON_H
#define QUORVEL_SIMULATOR_CONTROL_CARD_JSON_H

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "simulator/cards/cards.h"

namespace quorvel::sim {

// A card of that name, made as the one called `like` among the cards, or from nothing where that is empty, but with
// these members of a cards file in place of those that are there: tables are filled up, null takes a member away.
// Throws RequestError.
[[nodiscard]] Cards card_from(const nlohmann::json& members, const std::string& name, const Cards& cards,
                              const std::string& like);

}  // namespace quorvel::sim

#endif
