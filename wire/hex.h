// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_HEX_H
#define QUORVEL_WIRE_HEX_H

#include <string>
#include <string_view>

#include "wire/bytes.h"

namespace quorvel::wire {

// Two digits a byte, written in capitals, read in either case. Throws std::invalid_argument for a text that is none.
[[nodiscard]] std::string to_hex(ByteView bytes);
[[nodiscard]] Bytes from_hex(std::string_view text);

}  // namespace quorvel::wire

#endif
