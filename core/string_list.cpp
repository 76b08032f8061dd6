// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/string_list.h"

#include "quorvel/kor/collection.h"
#include "quorvel/kor/string.h"

namespace {

// What the list's equals function gets as its second argument: the search, not a text.
struct Search {
    const char* text;
    bool ignoreCase;
};

void* copy(const void* item) { return kor_string_new(static_cast<const char*>(item)); }

bool matches(const void* item, const void* search) {
    const auto* wanted = static_cast<const Search*>(search);
    const auto* text = static_cast<const char*>(item);
    if (wanted == nullptr) { return false; }
    if (text == nullptr || wanted->text == nullptr) { return text == wanted->text; }
    return kor_string_cequals(text, wanted->text, wanted->ignoreCase);
}

}  // namespace

KorList* kor_string_list_new() { return kor_list_new(copy, kor_collection_destroy, matches); }

void kor_string_list_clear(KorList* list) { kor_list_clear(list); }

void kor_string_list_delete(KorList** list) { kor_list_delete(list); }

uint32_t kor_string_list_size(const KorList* list) { return kor_list_size(list); }

KorListNode* kor_string_list_first(const KorList* list) { return kor_list_first(list); }

KorListNode* kor_string_list_last(const KorList* list) { return kor_list_last(list); }

KorListNode* kor_string_list_append(KorList* list, const char* text) { return kor_list_append(list, text); }

bool kor_string_list_pop(KorList* list) { return kor_list_pop(list); }

bool kor_string_list_poll(KorList* list) { return kor_list_poll(list); }

KorListNode* kor_string_list_next(const KorListNode* node) { return kor_list_next(node); }

KorListNode* kor_string_list_previous(const KorListNode* node) { return kor_list_previous(node); }

const char* kor_string_list_item(const KorListNode* node) { return static_cast<const char*>(kor_list_item(node)); }

KorListNode* kor_string_list_find_first(const KorList* list, const char* text, bool ignoreCase, uint32_t* outIndex) {
    const Search search{text, ignoreCase};
    return kor_list_find_first(list, &search, outIndex);
}

KorListNode* kor_string_list_find_last(const KorList* list, const char* text, bool ignoreCase, uint32_t* outIndex) {
    const Search search{text, ignoreCase};
    return kor_list_find_last(list, &search, outIndex);
}
