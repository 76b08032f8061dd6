/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_HEAP_H
#define QUORVEL_KOR_HEAP_H

#include <stddef.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * `size` bytes from the heap, not initialised; free them with kor_heap_free. Size 0 gives a block too. When memory runs
 * out, none is returned if the low bit of `nullable` is set. MALLOC_ERROR with an empty detail if it is not.
 */
KOR_API void* kor_heap_alloc(size_t size, int nullable);

/* Frees what kor_heap_alloc gave; none is ignored. */
KOR_API void kor_heap_free(void* pointer);

KOR_END_DECLS

#endif
