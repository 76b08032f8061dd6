// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/watch/trace.h"

#include <algorithm>
#include <fmt/format.h>

namespace quorvel::sim {

namespace {

std::string hex(ByteView bytes) { return fmt::format("{:02X}", fmt::join(bytes, " ")); }

}  // namespace

std::string enciphered_words(std::string_view words) { return fmt::format("enciphered {}", words); }

bool is_private(const Reception& reception) {
    if (reception.kind == Reception::Kind::kByte || reception.frame.encrypted) { return false; }
    return !is_open(Sender::kHost, reception.frame.data);
}

std::string wire_text(const Traffic& traffic) {
    if (!traffic.withheld) { return hex(traffic.wire); }
    const size_t open = 1 + kIdWidth + (traffic.sender == Sender::kPinPad ? kStatusWidth : 0);
    const ByteView shown = ByteView(traffic.wire).first(std::min(open, traffic.wire.size()));
    return fmt::format("{} ... ({} bytes)", hex(shown), traffic.wire.size());
}

std::string to_text(const Traffic& traffic) {
    return fmt::format("{} {}\n  {}\n", traffic.sender == Sender::kHost ? ">" : "<", wire_text(traffic), traffic.words);
}

}  // namespace quorvel::sim
