/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_HEAP_H
#define QUORVEL_KOR_HEAP_H

#include <stddef.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

KOR_API void* kor_heap_alloc(size_t size, int nullable);
KOR_API void kor_heap_free(void* pointer);

KOR_END_DECLS

#endif
