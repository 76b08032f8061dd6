// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/list.h"

#include "core/check.h"
#include "core/item_copy.h"
#include "core/raise.h"
#include "quorvel/kor/heap.h"

using namespace kor;

struct KorListNode {
    KorListNode* previous;
    KorListNode* next;
    void* item;
};

struct KorList {
    KorListNode* first;
    KorListNode* last;
    uint32_t size;
    KorItemCpFn itemCpFn;
    KorItemDelFn itemDelFn;
    KorItemEqualsFn equalsFn;
};

namespace {

bool remove(KorList& list, KorListNode* node) {
    if (node == nullptr) { return false; }
    (node->previous != nullptr ? node->previous->next : list.first) = node->next;
    (node->next != nullptr ? node->next->previous : list.last) = node->previous;
    --list.size;
    void* item = node->item;
    kor_heap_free(node);
    release(list.itemDelFn, item);
    return true;
}

bool matches(const KorList& list, const KorListNode& node, const void* item) {
    return node.item == item || list.equalsFn(node.item, item);
}

KorListNode* found(KorListNode* node, uint32_t index, uint32_t* outIndex) {
    if (outIndex != nullptr) { *outIndex = index; }
    return node;
}

}  // namespace

KorList* kor_list_new(KorItemCpFn itemCpFn, KorItemDelFn itemDelFn, KorItemEqualsFn equalsFn) {
    if (refuse_null(itemCpFn, "itemCpFn is NULL") || refuse_null(itemDelFn, "itemDelFn is NULL")
        || refuse_null(equalsFn, "equalsFn is NULL")) {
        return nullptr;
    }
    auto* list = static_cast<KorList*>(kor_heap_alloc(sizeof(KorList), 0));
    if (list != nullptr) { *list = {nullptr, nullptr, 0, itemCpFn, itemDelFn, equalsFn}; }
    return list;
}

void kor_list_clear(KorList* list) {
    if (refuse_null(list, "list is NULL")) { return; }
    while (remove(*list, list->last)) {}
}

void kor_list_delete(KorList** list) {
    if (list == nullptr || *list == nullptr) { return; }
    kor_list_clear(*list);
    kor_heap_free(*list);
    *list = nullptr;
}

uint32_t kor_list_size(const KorList* list) { return refuse_null(list, "list is NULL") ? 0 : list->size; }

KorListNode* kor_list_first(const KorList* list) { return refuse_null(list, "list is NULL") ? nullptr : list->first; }

KorListNode* kor_list_last(const KorList* list) { return refuse_null(list, "list is NULL") ? nullptr : list->last; }

KorListNode* kor_list_append(KorList* list, const void* item) {
    if (refuse_null(list, "list is NULL")) { return nullptr; }
    // The copy comes first: it may raise, and until then there is nothing to release.
    const auto copy = item_copy(list->itemCpFn, item);
    if (!copy) { return nullptr; }
    auto* node = static_cast<KorListNode*>(kor_heap_alloc(sizeof(KorListNode), 1));
    if (node == nullptr) {
        release(list->itemDelFn, *copy);
        return raise(KOR_RESULT_MALLOC_ERROR, nullptr), nullptr;
    }
    *node = {list->last, nullptr, *copy};
    (list->last != nullptr ? list->last->next : list->first) = node;
    list->last = node;
    ++list->size;
    return node;
}

bool kor_list_pop(KorList* list) { return refuse_null(list, "list is NULL") ? false : remove(*list, list->last); }

bool kor_list_poll(KorList* list) { return refuse_null(list, "list is NULL") ? false : remove(*list, list->first); }

KorListNode* kor_list_next(const KorListNode* node) { return refuse_null(node, "node is NULL") ? nullptr : node->next; }

KorListNode* kor_list_previous(const KorListNode* node) {
    if (refuse_null(node, "node is NULL")) { return nullptr; }
    return node->previous;
}

void* kor_list_item(const KorListNode* node) { return refuse_null(node, "node is NULL") ? nullptr : node->item; }

KorListNode* kor_list_find_first(const KorList* list, const void* item, uint32_t* outIndex) {
    if (refuse_null(list, "list is NULL")) { return nullptr; }
    uint32_t index = 0;
    for (KorListNode* node = list->first; node != nullptr; node = node->next, ++index) {
        if (matches(*list, *node, item)) { return found(node, index, outIndex); }
    }
    return nullptr;
}

KorListNode* kor_list_find_last(const KorList* list, const void* item, uint32_t* outIndex) {
    if (refuse_null(list, "list is NULL")) { return nullptr; }
    uint32_t index = list->size;
    for (KorListNode* node = list->last; node != nullptr; node = node->previous) {
        --index;
        if (matches(*list, *node, item)) { return found(node, index, outIndex); }
    }
    return nullptr;
}
