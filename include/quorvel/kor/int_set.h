/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_INT_SET_H
#define QUORVEL_KOR_INT_SET_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"
#include "quorvel/kor/set.h"

KOR_BEGIN_DECLS

typedef struct KorIntSetIterator {
    const KorSet* intSet;
    int32_t value;
} KorIntSetIterator;

KOR_API KorSet* kor_int_set_new(uint32_t initialCapacity);
KOR_API int32_t* kor_int_set_put(KorSet* set, int32_t value);
KOR_API bool kor_int_set_contains(const KorSet* set, int32_t value);
KOR_API KorIntSetIterator* kor_int_set_begin(const KorSet* set, KorIntSetIterator* out);
KOR_API KorIntSetIterator* kor_int_set_next(KorIntSetIterator* it);

KOR_END_DECLS

#endif
