/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_STRING_SET_H
#define QUORVEL_KOR_STRING_SET_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"
#include "quorvel/kor/set.h"

KOR_BEGIN_DECLS

/*
 * A set of texts, in which case counts: a KorSet whose items are copies of the texts, to be cleared, measured and
 * deleted with the functions of set.h, which also say what is not said here. None can be an item.
 */

/* A text of a set while walking through it. `item` is the set's own. */
typedef struct KorStringSetIterator {
    const KorSet* set; /* that it walks through */
    const char* item;  /* that it is on */
} KorStringSetIterator;

/* An empty set; as kor_set_new. */
KOR_API KorSet* kor_string_set_new(uint32_t initialCapacity);

/* Stores a copy of `text` and returns the copy; none when an equal text is present. */
KOR_API char* kor_string_set_put(KorSet* set, const char* text);

/* Whether an equal text is in the set. ILLEGAL_ARGUMENT "'set' is NULL". */
KOR_API bool kor_string_set_contains(const KorSet* set, const char* text);

/*
 * Fills `out` with the first text and returns it; none when the set is empty. ILLEGAL_ARGUMENT: "'set' is NULL";
 * "'out' is NULL".
 */
KOR_API KorStringSetIterator* kor_string_set_begin(const KorSet* set, KorStringSetIterator* out);

/* Moves to the next text and returns `it`; none at the end. ILLEGAL_ARGUMENT as kor_set_next. */
KOR_API KorStringSetIterator* kor_string_set_next(KorStringSetIterator* it);

KOR_END_DECLS

#endif
