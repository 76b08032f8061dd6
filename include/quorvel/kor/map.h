/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_MAP_H
#define QUORVEL_KOR_MAP_H

#include <stdint.h>

#include "quorvel/kor/collection.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * A hash map from copies of keys to copies of values, see collection.h. Every function raises ILLEGAL_ARGUMENT
 * "map is NULL" for a map of none.
 */

/* A map; kor_map_new makes it. */
typedef struct KorMap KorMap;

/* An entry of a map while walking through it. `key` and `value` are the map's own. */
typedef struct KorMapIterator {
    const KorMap* map; /* that it walks through */
    void* key;         /* of the entry */
    void* value;       /* of the entry */
} KorMapIterator;

/*
 * An empty map with room for `initialCapacity` slots, 2 or more. ILLEGAL_ARGUMENT, in this order:
 * "Invalid initialCapacity: %d"; "keyHashFn is NULL"; "keyEqualsFn is NULL"; "keyCpFn is NULL";
 * "valueCpFn is NULL"; "keyDelFn is NULL"; "valueDelFn is NULL".
 */
KOR_API KorMap* kor_map_new(uint32_t initialCapacity, KorItemHashFn keyHashFn, KorItemEqualsFn keyEqualsFn,
                            KorItemCpFn keyCpFn, KorItemCpFn valueCpFn, KorItemDelFn keyDelFn, KorItemDelFn valueDelFn);

/*
 * Stores a copy of `value` under `key` and returns the copy. Under a key that is present it takes the place of the
 * old value, which is freed, and the stored key stays. MALLOC_ERROR, and whatever the copy functions raise;
 * RUNTIME_ERROR "This point should never have been reached" when the map has no slot left, which growing prevents.
 */
KOR_API void* kor_map_put(KorMap* map, const void* key, const void* value);

/* The stored value, or none when the key is absent. */
KOR_API void* kor_map_get(const KorMap* map, const void* key);

/* Frees every entry; the capacity stays. */
KOR_API void kor_map_clear(KorMap* map);

/* Frees the map with its entries and sets the caller's variable to none; none is ignored. */
KOR_API void kor_map_delete(KorMap** map);

/* The number of slots. */
KOR_API uint32_t kor_map_capacity(const KorMap* map);

/* The number of entries. */
KOR_API uint32_t kor_map_size(const KorMap* map);

/*
 * Fills `out` with the first entry and returns it; none, with `out` untouched, when the map is empty.
 * ILLEGAL_ARGUMENT "'out' is NULL".
 */
KOR_API KorMapIterator* kor_map_begin(const KorMap* map, KorMapIterator* out);

/*
 * Moves to the next entry and returns `it`; none at the end, and `it` stays on the last entry. A put under a new
 * key in between may make it miss or repeat entries. ILLEGAL_ARGUMENT: "'it' is NULL"; "'it->map' is NULL";
 * "'it->key' not present in 'it->map'".
 */
KOR_API KorMapIterator* kor_map_next(KorMapIterator* it);

KOR_END_DECLS

#endif
