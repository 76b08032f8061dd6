// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/line/paced_bytes.h"

#include <algorithm>

namespace quorvel::sim {

void PacedBytes::push(ByteView bytes, const Pace& pace, Clock::time_point now) {
    auto at = std::max(now, last_) + pace.before;
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (i != 0) { at += pace.between; }
        if (i != 0 && i == bytes.size() / 2) { at += pace.amid; }
        at += perByte_;
        bytes_.push_back({at, bytes[i]});
    }
    last_ = at;
}

Bytes PacedBytes::take(Clock::time_point now) {
    const auto end = std::ranges::find_if(bytes_, [now](const Timed& timed) { return timed.due > now; });
    Bytes arrived;
    for (auto it = bytes_.begin(); it != end; ++it) { arrived.push_back(it->byte); }
    bytes_.erase(bytes_.begin(), end);
    return arrived;
}

std::optional<PacedBytes::Clock::time_point> PacedBytes::due() const {
    return bytes_.empty() ? std::nullopt : std::optional(bytes_.front().due);
}

void PacedBytes::clear() noexcept {
    bytes_.clear();
    last_ = {};
}

}  // namespace quorvel::sim
