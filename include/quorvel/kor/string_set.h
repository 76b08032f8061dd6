/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_STRING_SET_H
#define QUORVEL_KOR_STRING_SET_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"
#include "quorvel/kor/set.h"

KOR_BEGIN_DECLS

typedef struct KorStringSetIterator {
    const KorSet* set;
    const char* item;
} KorStringSetIterator;

KOR_API KorSet* kor_string_set_new(uint32_t initialCapacity);
KOR_API char* kor_string_set_put(KorSet* set, const char* text);
KOR_API bool kor_string_set_contains(const KorSet* set, const char* text);
KOR_API KorStringSetIterator* kor_string_set_begin(const KorSet* set, KorStringSetIterator* out);
KOR_API KorStringSetIterator* kor_string_set_next(KorStringSetIterator* it);

KOR_END_DECLS

#endif
