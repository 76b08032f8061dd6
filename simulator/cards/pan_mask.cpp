// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/pan_mask.h"

#include <algorithm>

namespace quorvel::sim {

std::string masked(std::string track, size_t panDigits, const PanMask& mask) {
    const size_t end = std::min(track.find_first_of("^="), track.size());
    size_t behind = 0;
    for (size_t i = end; i > 0 && behind < panDigits; --i) {
        char& c = track[i - 1];
        if (c < '0' || c > '9') { continue; }
        const size_t before = panDigits - 1 - behind;
        if (behind >= mask.trailing && before >= mask.leading) { c = '*'; }
        ++behind;
    }
    return track;
}

}  // namespace quorvel::sim
