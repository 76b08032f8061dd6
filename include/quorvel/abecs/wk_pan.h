/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_WK_PAN_H
#define QUORVEL_ABECS_WK_PAN_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/* How the working key for card numbers came and which cipher it is for. */
typedef enum AbecsWkPanType_E KOR_ENUM_INT32 {
    ABECS_WK_PAN_TYPE_DES = 0,
    ABECS_WK_PAN_TYPE_TDES = 1,
    ABECS_WK_PAN_TYPE_TDES_RSA = 2
} AbecsWkPanType_E;

/* The working key for card numbers. ABECS_WK_PAN_TYPE_DES uses the first 8 bytes of the key. */
typedef struct AbecsWkPan {
    AbecsWkPanType_E type; /* the cipher */
    uint8_t key[16];       /* in clear */
} AbecsWkPan;

KOR_END_DECLS

#endif
