/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_INT_SET_H
#define QUORVEL_KOR_INT_SET_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"
#include "quorvel/kor/set.h"

KOR_BEGIN_DECLS

/*
 * A set of 32-bit integers: a KorSet whose items are the values, to be cleared, measured and deleted with the
 * functions of set.h, which also say what is not said here.
 */

/* A value of a set while walking through it. */
typedef struct KorIntSetIterator {
    const KorSet* intSet; /* that it walks through */
    int32_t value;        /* that it is on */
} KorIntSetIterator;

/* An empty set; as kor_set_new. */
KOR_API KorSet* kor_int_set_new(uint32_t initialCapacity);

/* Stores `value` and returns where; none when it is present. Do not change the value there. */
KOR_API int32_t* kor_int_set_put(KorSet* set, int32_t value);

/* Whether `value` is in the set. ILLEGAL_ARGUMENT "'set' is NULL". */
KOR_API bool kor_int_set_contains(const KorSet* set, int32_t value);

/*
 * Fills `out` with the first value and returns it; none when the set is empty. ILLEGAL_ARGUMENT: "'set' is NULL";
 * "'out' is NULL".
 */
KOR_API KorIntSetIterator* kor_int_set_begin(const KorSet* set, KorIntSetIterator* out);

/*
 * Moves to the next value and returns `it`; none at the end. ILLEGAL_ARGUMENT: "'it' is NULL";
 * "'it->intSet' is NULL"; "'it->item' not present in 'it->set'" when the value is not in the set.
 */
KOR_API KorIntSetIterator* kor_int_set_next(KorIntSetIterator* it);

KOR_END_DECLS

#endif
