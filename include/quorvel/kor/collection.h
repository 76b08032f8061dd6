/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_COLLECTION_H
#define QUORVEL_KOR_COLLECTION_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * What the containers have in common.
 *
 * 1. Items are untyped pointers. A container keeps a copy of its own of what is put into it, made by its copy
 *    function and freed by its delete function. What a container returns is that copy: it belongs to the container
 *    and is valid until the container frees it.
 *
 * 2. A null item is kept as null: copy and delete functions never see one. Two null items are equal and a null item
 *    equals no other, so the hash and equals functions of maps and sets never see one either; their hash is 0.
 *
 * 3. `_new` takes the functions of the items and raises ILLEGAL_ARGUMENT for one that is none, and MALLOC_ERROR.
 *    `_delete` frees the copies and the container and sets the caller's variable to none; it ignores none.
 *
 * 4. Maps and sets find their items by hash. Their capacity doubles when they become three quarters full, which
 *    moves the items: the order in which an iterator meets them depends on the hashes and on the capacity. Single
 *    items cannot be removed.
 *
 * 5. A put or an append that fails, be it in a copy function, leaves the container as it was. One that succeeds leaves
 *    the pending error as it was, so that a clean-up can store what it finds in kor_exception_get_message().
 */

/* A new copy of `item`, for the container to own. It may raise. */
typedef void* (*KorItemCpFn)(const void* item);

/* Frees a copy. It must not raise. */
typedef void (*KorItemDelFn)(void* item);

/* Whether a stored item, `lhs`, equals the one sought, `rhs`. */
typedef bool (*KorItemEqualsFn)(const void* lhs, const void* rhs);

/* Equal for equal items. */
typedef uint32_t (*KorItemHashFn)(const void* item);

/*
 * A copy of `size` bytes on the heap, the caller's to free with kor_collection_destroy; none for none.
 * ILLEGAL_ARGUMENT "data is NULL and size != 0"; MALLOC_ERROR.
 */
KOR_API void* kor_collection_copy(const void* data, size_t size);

/* Frees a copy; none is ignored. */
KOR_API void kor_collection_destroy(void* pointer);

/* Whether `size` bytes are the same; none equals only none. */
KOR_API bool kor_collection_equals(const void* lhs, const void* rhs, size_t size);

/* The value itself. */
KOR_API uint32_t kor_collection_hash_int(int32_t value);

/*
 * The hash of a text: with n its length and c(i) its characters as signed bytes, the sum of c(i) * 31^(n-1-i),
 * modulo 2^32. 0 for none.
 */
KOR_API uint32_t kor_collection_hash_str(const char* text);

KOR_END_DECLS

#endif
