/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_SPE_MTHD_DAT_H
#define QUORVEL_ABECS_SPE_MTHD_DAT_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Methods of data encryption: the kind of key (master and working key, DUKPT, or one made of random data) with the
 * cipher and its mode.
 */
typedef enum AbecsSpeMthdDat_E KOR_ENUM_INT32 {
    ABECS_SPE_MTHD_DAT_MK_WK_DES_ECB = 0,
    ABECS_SPE_MTHD_DAT_MK_WK_DES_CBC = 1,
    ABECS_SPE_MTHD_DAT_MK_WK_TDES_ECB = 10,
    ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC = 11,
    ABECS_SPE_MTHD_DAT_DUKPT_DAT1_ECB = 30,
    ABECS_SPE_MTHD_DAT_DUKPT_DAT3_ECB = 50,
    ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC = 51,
    ABECS_SPE_MTHD_DAT_TDES_RANDOM_ECB = 90,
    ABECS_SPE_MTHD_DAT_TDES_RANDOM_CBC = 91
} AbecsSpeMthdDat_E;

/* The enumerator's name, a constant. RUNTIME_ERROR "Unhandled mthdDat: %d\n" for any other number. */
KOR_API const char* abecs_spe_mthd_dat_to_string(AbecsSpeMthdDat_E mthdDat);

KOR_END_DECLS

#endif
