// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/endianness.h"

#include <bit>

namespace {

constexpr bool kHostIsBig = std::endian::native == std::endian::big;

constexpr uint16_t swap(uint16_t value) { return __builtin_bswap16(value); }

constexpr uint32_t swap(uint32_t value) { return __builtin_bswap32(value); }

// Swapping is its own inverse, so one function serves both directions.
template <typename Integer>
constexpr Integer big(Integer value) {
    return kHostIsBig ? value : swap(value);
}

template <typename Integer>
constexpr Integer little(Integer value) {
    return kHostIsBig ? swap(value) : value;
}

}  // namespace

KorEndianness_E kor_endianness_host() { return kHostIsBig ? KOR_ENDIANNESS_BIG : KOR_ENDIANNESS_LITTLE; }

uint16_t kor_endianness_htobe16(uint16_t value) { return big(value); }

uint16_t kor_endianness_htole16(uint16_t value) { return little(value); }

uint16_t kor_endianness_be16toh(uint16_t value) { return big(value); }

uint16_t kor_endianness_le16toh(uint16_t value) { return little(value); }

uint32_t kor_endianness_htobe32(uint32_t value) { return big(value); }

uint32_t kor_endianness_htole32(uint32_t value) { return little(value); }

uint32_t kor_endianness_be32toh(uint32_t value) { return big(value); }

uint32_t kor_endianness_le32toh(uint32_t value) { return little(value); }
