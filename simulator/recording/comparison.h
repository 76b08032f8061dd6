// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_RECORDING_COMPARISON_H
#define QUORVEL_SIMULATOR_RECORDING_COMPARISON_H

#include <set>
#include <string>
#include <vector>

#include "simulator/wire.h"

namespace quorvel::sim {

// Names of fields, parameters and data objects.
using Names = std::set<std::string, std::less<>>;

// In these a till rightly differs each time: dates and times, keys that it draws, and what counts its transactions.
[[nodiscard]] Names changing_values();

// Throws std::invalid_argument for a name that no request has.
void require_known(const std::vector<std::string>& names);

// What the host's request has otherwise than the one that was recorded, in words that withhold what is private; empty
// for the same one. Where both are withheld, only their sizes count.
[[nodiscard]] std::string difference(ByteView recorded, ByteView came, const Names& ignored);

}  // namespace quorvel::sim

#endif
