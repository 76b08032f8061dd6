/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_MAP_H
#define QUORVEL_KOR_MAP_H

#include <stdint.h>

#include "quorvel/kor/collection.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef struct KorMap KorMap;

typedef struct KorMapIterator {
    const KorMap* map;
    void* key;
    void* value;
} KorMapIterator;

KOR_API KorMap* kor_map_new(uint32_t initialCapacity, KorItemHashFn keyHashFn, KorItemEqualsFn keyEqualsFn,
                            KorItemCpFn keyCpFn, KorItemCpFn valueCpFn, KorItemDelFn keyDelFn, KorItemDelFn valueDelFn);
KOR_API void* kor_map_put(KorMap* map, const void* key, const void* value);
KOR_API void* kor_map_get(const KorMap* map, const void* key);
KOR_API void kor_map_clear(KorMap* map);
KOR_API void kor_map_delete(KorMap** map);
KOR_API uint32_t kor_map_capacity(const KorMap* map);
KOR_API uint32_t kor_map_size(const KorMap* map);
KOR_API KorMapIterator* kor_map_begin(const KorMap* map, KorMapIterator* out);
KOR_API KorMapIterator* kor_map_next(KorMapIterator* it);

KOR_END_DECLS

#endif
