// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_BYTES_H
#define QUORVEL_WIRE_BYTES_H

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace quorvel::wire {

using Bytes = std::vector<uint8_t>;
using ByteView = std::span<const uint8_t>;

inline Bytes to_bytes(std::string_view text) { return {text.begin(), text.end()}; }

inline void append(Bytes& to, ByteView from) { to.insert(to.end(), from.begin(), from.end()); }

}  // namespace quorvel::wire

#endif
