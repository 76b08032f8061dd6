/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CRC16_H
#define QUORVEL_ABECS_CRC16_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

KOR_API void abecs_crc16(const void* data, size_t length, uint16_t* crc);

KOR_END_DECLS

#endif
