// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_FLAG_H
#define QUORVEL_ABECS_DATA_FLAG_H

#include <cstdint>

namespace abecs {

// Whether a caller's bool is true. In memory that was never written, or from a language that has no bool, its byte may
// be any number; reading it as a bool is then undefined. Everything but 0 is true.
[[nodiscard]] inline bool is_set(const bool& flag) { return *reinterpret_cast<const volatile uint8_t*>(&flag) != 0; }

}  // namespace abecs

#endif
