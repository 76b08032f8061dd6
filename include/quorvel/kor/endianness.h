/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_ENDIANNESS_H
#define QUORVEL_KOR_ENDIANNESS_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Byte orders, and the conversion of numbers between the host's order and a fixed one: the bytes are swapped where
 * the two differ. No function raises.
 */

/* The most significant byte first, or last. */
typedef enum KorEndianness_E KOR_ENUM_INT32 { KOR_ENDIANNESS_BIG = 0, KOR_ENDIANNESS_LITTLE = 1 } KorEndianness_E;

/* The order of this machine. */
KOR_API KorEndianness_E kor_endianness_host(void);

/* From the host's order (h) to big-endian (be) or little-endian (le), or back. */
KOR_API uint16_t kor_endianness_htobe16(uint16_t value);
KOR_API uint16_t kor_endianness_htole16(uint16_t value);
KOR_API uint16_t kor_endianness_be16toh(uint16_t value);
KOR_API uint16_t kor_endianness_le16toh(uint16_t value);
KOR_API uint32_t kor_endianness_htobe32(uint32_t value);
KOR_API uint32_t kor_endianness_htole32(uint32_t value);
KOR_API uint32_t kor_endianness_be32toh(uint32_t value);
KOR_API uint32_t kor_endianness_le32toh(uint32_t value);

KOR_END_DECLS

#endif
