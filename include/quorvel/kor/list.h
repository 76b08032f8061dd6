/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_LIST_H
#define QUORVEL_KOR_LIST_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/kor/collection.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef struct KorListNode KorListNode;

typedef struct KorList KorList;

KOR_API KorList* kor_list_new(KorItemCpFn itemCpFn, KorItemDelFn itemDelFn, KorItemEqualsFn equalsFn);
KOR_API void kor_list_clear(KorList* list);
KOR_API void kor_list_delete(KorList** list);
KOR_API uint32_t kor_list_size(const KorList* list);
KOR_API KorListNode* kor_list_first(const KorList* list);
KOR_API KorListNode* kor_list_last(const KorList* list);
KOR_API KorListNode* kor_list_append(KorList* list, const void* item);
KOR_API bool kor_list_pop(KorList* list);
KOR_API bool kor_list_poll(KorList* list);
KOR_API KorListNode* kor_list_next(const KorListNode* node);
KOR_API KorListNode* kor_list_previous(const KorListNode* node);
KOR_API void* kor_list_item(const KorListNode* node);
KOR_API KorListNode* kor_list_find_first(const KorList* list, const void* item, uint32_t* outIndex);
KOR_API KorListNode* kor_list_find_last(const KorList* list, const void* item, uint32_t* outIndex);

KOR_END_DECLS

#endif
