// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_CRC_H
#define QUORVEL_WIRE_CRC_H

#include <cstdint>

#include "wire/bytes.h"

namespace quorvel::wire {

// CRC-16 of frames, encrypted content and media files: polynomial 0x1021, most significant bit first, starting at 0,
// no final XOR. Feed a text in pieces by passing the result of the piece before.
[[nodiscard]] uint16_t crc16(ByteView bytes, uint16_t soFar = 0) noexcept;

}  // namespace quorvel::wire

#endif
