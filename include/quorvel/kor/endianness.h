/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_ENDIANNESS_H
#define QUORVEL_KOR_ENDIANNESS_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef enum KorEndianness_E KOR_ENUM_INT32 { KOR_ENDIANNESS_BIG = 0, KOR_ENDIANNESS_LITTLE = 1 } KorEndianness_E;

KOR_API KorEndianness_E kor_endianness_host(void);
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
