// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_MK_H
#define QUORVEL_ABECS_DATA_MK_H

#include <cstddef>
#include <cstdint>

#include "quorvel/abecs/mk.h"

namespace abecs {

// Enciphers whole blocks in place, each by itself. False, after RUNTIME_ERROR "Unhandled case", for a type that there
// is no cipher for.
[[nodiscard]] bool encipher(const AbecsMk& key, uint8_t* blocks, size_t size);

}  // namespace abecs

#endif
