/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_SET_H
#define QUORVEL_KOR_SET_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/kor/collection.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef struct KorSet KorSet;

typedef struct KorSetIterator {
    const KorSet* set;
    void* item;
} KorSetIterator;

KOR_API KorSet* kor_set_new(uint32_t initialCapacity, KorItemHashFn itemHashFn, KorItemEqualsFn itemEqualsFn,
                            KorItemCpFn itemCpFn, KorItemDelFn itemDelFn);
KOR_API void* kor_set_put(KorSet* set, const void* item);
KOR_API bool kor_set_contains(const KorSet* set, const void* item);
KOR_API void kor_set_clear(KorSet* set);
KOR_API void kor_set_delete(KorSet** set);
KOR_API uint32_t kor_set_capacity(const KorSet* set);
KOR_API uint32_t kor_set_size(const KorSet* set);
KOR_API KorSetIterator* kor_set_begin(const KorSet* set, KorSetIterator* out);
KOR_API KorSetIterator* kor_set_next(KorSetIterator* it);

KOR_END_DECLS

#endif
