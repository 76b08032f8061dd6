/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_SET_H
#define QUORVEL_KOR_SET_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/kor/collection.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/* A hash set of copies, see collection.h. Every function raises ILLEGAL_ARGUMENT "'set' is NULL" for a set of none. */

/* A set; kor_set_new makes it. */
typedef struct KorSet KorSet;

/* An item of a set while walking through it. `item` is the set's own. */
typedef struct KorSetIterator {
    const KorSet* set; /* that it walks through */
    void* item;        /* that it is on */
} KorSetIterator;

/*
 * An empty set with room for `initialCapacity` slots, 2 or more. ILLEGAL_ARGUMENT, in this order:
 * "Invalid 'initialCapacity': %d"; "'itemHashFn' is NULL"; "'itemEqualsFn' is NULL"; "'itemCpFn' is NULL";
 * "'itemDelFn' is NULL".
 */
KOR_API KorSet* kor_set_new(uint32_t initialCapacity, KorItemHashFn itemHashFn, KorItemEqualsFn itemEqualsFn,
                            KorItemCpFn itemCpFn, KorItemDelFn itemDelFn);

/*
 * Stores a copy of `item` and returns the copy; none, and nothing changes, when an equal item is present.
 * MALLOC_ERROR, and whatever the copy function raises; RUNTIME_ERROR "This point should never have been reached"
 * when the set has no slot left, which growing prevents.
 */
KOR_API void* kor_set_put(KorSet* set, const void* item);

/* Whether an equal item is in the set. */
KOR_API bool kor_set_contains(const KorSet* set, const void* item);

/* Frees every item; the capacity stays. */
KOR_API void kor_set_clear(KorSet* set);

/* Frees the set with its items and sets the caller's variable to none; none is ignored. */
KOR_API void kor_set_delete(KorSet** set);

/* The number of slots. */
KOR_API uint32_t kor_set_capacity(const KorSet* set);

/* The number of items. */
KOR_API uint32_t kor_set_size(const KorSet* set);

/*
 * Fills `out` with the first item and returns it; none, with `out` untouched, when the set is empty.
 * ILLEGAL_ARGUMENT "'out' is NULL".
 */
KOR_API KorSetIterator* kor_set_begin(const KorSet* set, KorSetIterator* out);

/*
 * Moves to the next item and returns `it`; none at the end, and `it` stays on the last item. A put in between may
 * make it miss or repeat items. ILLEGAL_ARGUMENT: "'it' is NULL"; "'it->set' is NULL";
 * "'it->item' not present in 'it->set'".
 */
KOR_API KorSetIterator* kor_set_next(KorSetIterator* it);

KOR_END_DECLS

#endif
