/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_EMV_DATA_H
#define QUORVEL_ABECS_EMV_DATA_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/* EMV data objects, tag by tag; the first szData bytes count. */
typedef struct AbecsEmvData {
    uint8_t data[512]; /* one behind the other */
    size_t szData;     /* how many bytes count */
} AbecsEmvData;

/* The tags whose values are asked for; the first szData bytes count. */
typedef struct AbecsTagList {
    uint8_t data[128]; /* one behind the other */
    size_t szData;     /* how many bytes count */
} AbecsTagList;

KOR_END_DECLS

#endif
