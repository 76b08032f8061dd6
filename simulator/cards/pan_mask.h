// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDS_PAN_MASK_H
#define QUORVEL_SIMULATOR_CARDS_PAN_MASK_H

#include <cstddef>
#include <string>

namespace quorvel::sim {

// How many digits of a card number stay readable at each end.
struct PanMask {
    size_t leading = 6;
    size_t trailing = 4;
};

// A track whose card number, of so many digits, ends before the first separator. Blanks among the digits stay.
[[nodiscard]] std::string masked(std::string track, size_t panDigits, const PanMask& mask);

}  // namespace quorvel::sim

#endif
