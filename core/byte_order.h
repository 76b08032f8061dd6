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

// Hands the bytes of a number, as they travel in the order, to the writer of a buffer or a line.
template <auto Write, typename Target, typename Number>
void write_ordered(Target* target, Number value, int32_t byteOrder) {
    value = ordered(value, byteOrder);
    Write(target, &value, sizeof value);
}

}  // namespace kor

#endif
