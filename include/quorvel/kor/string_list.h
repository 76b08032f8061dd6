/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_STRING_LIST_H
#define QUORVEL_KOR_STRING_LIST_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"
#include "quorvel/kor/list.h"

KOR_BEGIN_DECLS

/*
 * A list of copies of texts: the functions of list.h under names and types of their own, with the same errors. None
 * can be an item.
 */

/* An empty list; as kor_list_new. */
KOR_API KorList* kor_string_list_new(void);

/* Removes every node; as kor_list_clear. */
KOR_API void kor_string_list_clear(KorList* list);

/* Frees the list with its nodes and sets the caller's variable to none; as kor_list_delete. */
KOR_API void kor_string_list_delete(KorList** list);

/* The number of nodes; as kor_list_size. */
KOR_API uint32_t kor_string_list_size(const KorList* list);

/* The node at either end, or none when the list is empty; as kor_list_first and kor_list_last. */
KOR_API KorListNode* kor_string_list_first(const KorList* list);
KOR_API KorListNode* kor_string_list_last(const KorList* list);

/* Adds a copy of `text` at the end and returns its node; as kor_list_append. */
KOR_API KorListNode* kor_string_list_append(KorList* list, const char* text);

/* Remove the last node (pop) or the first (poll); as kor_list_pop and kor_list_poll. */
KOR_API bool kor_string_list_pop(KorList* list);
KOR_API bool kor_string_list_poll(KorList* list);

/* The neighbour of a node, or none at the end of the list; as kor_list_next and kor_list_previous. */
KOR_API KorListNode* kor_string_list_next(const KorListNode* node);
KOR_API KorListNode* kor_string_list_previous(const KorListNode* node);

/* The list's copy of the text; as kor_list_item. */
KOR_API const char* kor_string_list_item(const KorListNode* node);

/*
 * The first or the last node whose text equals `text`, in which case counts unless `ignoreCase` is true; none when
 * there is none. A `text` of none finds an item of none. `outIndex` as in kor_list_find_first. Do not use that
 * function on a list of texts: it does not take a text.
 */
KOR_API KorListNode* kor_string_list_find_first(const KorList* list, const char* text, bool ignoreCase,
                                                uint32_t* outIndex);
KOR_API KorListNode* kor_string_list_find_last(const KorList* list, const char* text, bool ignoreCase,
                                               uint32_t* outIndex);

KOR_END_DECLS

#endif
