/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CRC16_H
#define QUORVEL_ABECS_CRC16_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * The CRC-16 of the link: polynomial 0x1021, initial value 0, most significant bit first, no reflection, no final XOR.
 * Of the nine characters "123456789" it is 0x31C3.
 *
 * Goes on from the value in `crc` with `length` bytes at `data` and stores the new value there; start with 0.
 * ILLEGAL_ARGUMENT: "'data' is NULL" unless `length` is 0; "'crc' is NULL".
 */
KOR_API void abecs_crc16(const void* data, size_t length, uint16_t* crc);

KOR_END_DECLS

#endif
