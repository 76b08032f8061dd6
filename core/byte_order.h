// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_BYTE_ORDER_H
#define QUORVEL_CORE_BYTE_ORDER_H

#include <cstdint>

#include "quorvel/kor/endianness.h"

namespace kor {

// A number as it travels in the order, or the number of what travelled: the same swap. All but BIG is little.
[[nodiscard]] inline uint16_t ordered(uint16_t value, int32_t byteOrder) {
    return byteOrder == KOR_ENDIANNESS_BIG ? kor_endianness_htobe16(value) : kor_endianness_htole16(value);
}

[[nodiscard]] inline uint32_t ordered(uint32_t value, int32_t byteOrder) {
    return byteOrder == KOR_ENDIANNESS_BIG ? kor_endianness_htobe32(value) : kor_endianness_htole32(value);
}

}  // namespace kor

#endif
