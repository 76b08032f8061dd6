/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_MK_H
#define QUORVEL_ABECS_MK_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/* Which cipher a master key is for. */
typedef enum AbecsMkType_E KOR_ENUM_INT32 { ABECS_MK_TYPE_DES = 0, ABECS_MK_TYPE_TDES = 1 } AbecsMkType_E;

/* A master key, in clear, and its index in the PIN pad, 0 to 99. ABECS_MK_TYPE_DES uses the first 8 bytes of the key.
 */
typedef struct AbecsMk {
    AbecsMkType_E type; /* the cipher */
    uint8_t idx;        /* in the PIN pad */
    uint8_t key[16];    /* in clear */
} AbecsMk;

KOR_END_DECLS

#endif
