/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_COLLECTION_H
#define QUORVEL_KOR_COLLECTION_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef void* (*KorItemCpFn)(const void* item);

typedef void (*KorItemDelFn)(void* item);

typedef bool (*KorItemEqualsFn)(const void* lhs, const void* rhs);

typedef uint32_t (*KorItemHashFn)(const void* item);

KOR_API void* kor_collection_copy(const void* data, size_t size);
KOR_API void kor_collection_destroy(void* pointer);
KOR_API bool kor_collection_equals(const void* lhs, const void* rhs, size_t size);
KOR_API uint32_t kor_collection_hash_int(int32_t value);
KOR_API uint32_t kor_collection_hash_str(const char* text);

KOR_END_DECLS

#endif
