/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_LIST_H
#define QUORVEL_KOR_LIST_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/kor/collection.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * A doubly linked list of copies, see collection.h. Every function raises ILLEGAL_ARGUMENT "list is NULL" or
 * "node is NULL" for such an argument. A node is valid until it is removed.
 */

/* A place in a list, with its item. */
typedef struct KorListNode KorListNode;

/* A list; kor_list_new makes it. */
typedef struct KorList KorList;

/* An empty list. ILLEGAL_ARGUMENT: "itemCpFn is NULL"; "itemDelFn is NULL"; "equalsFn is NULL". */
KOR_API KorList* kor_list_new(KorItemCpFn itemCpFn, KorItemDelFn itemDelFn, KorItemEqualsFn equalsFn);

/* Removes every node. */
KOR_API void kor_list_clear(KorList* list);

/* Frees the list with its nodes and sets the caller's variable to none; none is ignored. */
KOR_API void kor_list_delete(KorList** list);

/* The number of nodes. */
KOR_API uint32_t kor_list_size(const KorList* list);

/* The node at either end, or none when the list is empty. */
KOR_API KorListNode* kor_list_first(const KorList* list);
KOR_API KorListNode* kor_list_last(const KorList* list);

/*
 * Adds a copy of `item`, which may be none, at the end and returns its node. MALLOC_ERROR, and whatever the copy
 * function raises.
 */
KOR_API KorListNode* kor_list_append(KorList* list, const void* item);

/* Remove the last node (pop) or the first (poll); false when the list is empty. */
KOR_API bool kor_list_pop(KorList* list);
KOR_API bool kor_list_poll(KorList* list);

/* The neighbour of a node, or none at the end of the list. */
KOR_API KorListNode* kor_list_next(const KorListNode* node);
KOR_API KorListNode* kor_list_previous(const KorListNode* node);

/* The list's copy of the item, or none if that was put in. */
KOR_API void* kor_list_item(const KorListNode* node);

/*
 * The first or the last node whose item is the very pointer `item` or equal to it by the list's function, called as
 * equals(stored, item), where either may be none; none when nothing matches. `outIndex`, if given, receives its
 * position from the first node, counted from 0; it is left alone when nothing matches.
 */
KOR_API KorListNode* kor_list_find_first(const KorList* list, const void* item, uint32_t* outIndex);
KOR_API KorListNode* kor_list_find_last(const KorList* list, const void* item, uint32_t* outIndex);

KOR_END_DECLS

#endif
