// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_KEYS_BLOCK_CIPHER_H
#define QUORVEL_SIMULATOR_KEYS_BLOCK_CIPHER_H

#include <cstddef>

#include "simulator/wire.h"

namespace quorvel::sim {

// Of DES and triple DES.
inline constexpr size_t kBlockSize = 8;

// A key of 8 bytes is one for DES, of 16 bytes for two-key triple DES; any other, or data that are no whole blocks,
// throw std::invalid_argument. Without a vector each block by itself (ECB), with one chained (CBC).
[[nodiscard]] Bytes encipher(ByteView key, ByteView blocks);
[[nodiscard]] Bytes encipher(ByteView key, ByteView blocks, ByteView vector);
[[nodiscard]] Bytes decipher(ByteView key, ByteView blocks);

// Byte by byte, the mask over and over.
[[nodiscard]] Bytes masked(ByteView bytes, ByteView mask);

}  // namespace quorvel::sim

#endif
