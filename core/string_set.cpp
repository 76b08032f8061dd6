// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/string_set.h"

#include "core/check.h"
#include "quorvel/kor/collection.h"
#include "quorvel/kor/string.h"

using namespace kor;

namespace {

const char* text_of(const void* item) { return static_cast<const char*>(item); }

uint32_t hash(const void* item) { return kor_collection_hash_str(text_of(item)); }

bool equals(const void* lhs, const void* rhs) { return kor_string_equals(text_of(lhs), text_of(rhs)); }

void* copy(const void* item) { return kor_string_new(text_of(item)); }

KorStringSetIterator* show(KorStringSetIterator* it, const KorSetIterator* inner) {
    if (inner == nullptr) { return nullptr; }
    *it = {inner->set, text_of(inner->item)};
    return it;
}

}  // namespace

KorSet* kor_string_set_new(uint32_t initialCapacity) {
    return kor_set_new(initialCapacity, hash, equals, copy, kor_collection_destroy);
}

char* kor_string_set_put(KorSet* set, const char* text) { return static_cast<char*>(kor_set_put(set, text)); }

bool kor_string_set_contains(const KorSet* set, const char* text) { return kor_set_contains(set, text); }

KorStringSetIterator* kor_string_set_begin(const KorSet* set, KorStringSetIterator* out) {
    if (refuse_null(set, "'set' is NULL") || refuse_null(out, "'out' is NULL")) { return nullptr; }
    KorSetIterator inner{};
    return show(out, kor_set_begin(set, &inner));
}

KorStringSetIterator* kor_string_set_next(KorStringSetIterator* it) {
    if (refuse_null(it, "'it' is NULL")) { return nullptr; }
    // The set only looks the item up: the constness lost here is never used.
    KorSetIterator inner{it->set, const_cast<char*>(it->item)};
    return show(it, kor_set_next(&inner));
}
