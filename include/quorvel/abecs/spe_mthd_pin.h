/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_SPE_MTHD_PIN_H
#define QUORVEL_ABECS_SPE_MTHD_PIN_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/* Methods of PIN encryption: the kind of key (master and working key, or DUKPT) with the cipher. */
typedef enum AbecsSpeMthdPin_E KOR_ENUM_INT32 {
    ABECS_SPE_MTHD_PIN_MK_WK_DES = 0,
    ABECS_SPE_MTHD_PIN_MK_WK_TDES = 1,
    ABECS_SPE_MTHD_PIN_DUKPT_DES = 2,
    ABECS_SPE_MTHD_PIN_DUKPT_TDES = 3
} AbecsSpeMthdPin_E;

KOR_END_DECLS

#endif
