// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_WK_PAN_H
#define QUORVEL_ABECS_DATA_WK_PAN_H

#include <cstddef>
#include <cstdint>

#include "quorvel/abecs/wk_pan.h"

namespace abecs {

// Deciphers whole blocks in place, each by itself. False, after RUNTIME_ERROR "Unhandled case", for a type that there
// is no cipher for.
[[nodiscard]] bool decipher(const AbecsWkPan& key, uint8_t* blocks, size_t size);

}  // namespace abecs

#endif
