// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/int_set.h"

#include "core/check.h"
#include "quorvel/kor/collection.h"

using namespace kor;

namespace {

int32_t value_of(const void* item) { return *static_cast<const int32_t*>(item); }

uint32_t hash(const void* item) { return kor_collection_hash_int(value_of(item)); }

bool equals(const void* lhs, const void* rhs) { return value_of(lhs) == value_of(rhs); }

void* copy(const void* item) { return kor_collection_copy(item, sizeof(int32_t)); }

// Passes over a null item, which kor_set_put may have stored: it has no value to show.
KorIntSetIterator* show(KorIntSetIterator* it, KorSetIterator* inner) {
    while (inner != nullptr && inner->item == nullptr) { inner = kor_set_next(inner); }
    if (inner == nullptr) { return nullptr; }
    *it = {inner->set, value_of(inner->item)};
    return it;
}

}  // namespace

KorSet* kor_int_set_new(uint32_t initialCapacity) {
    return kor_set_new(initialCapacity, hash, equals, copy, kor_collection_destroy);
}

int32_t* kor_int_set_put(KorSet* set, int32_t value) { return static_cast<int32_t*>(kor_set_put(set, &value)); }

bool kor_int_set_contains(const KorSet* set, int32_t value) { return kor_set_contains(set, &value); }

KorIntSetIterator* kor_int_set_begin(const KorSet* set, KorIntSetIterator* out) {
    if (refuse_null(set, "'set' is NULL") || refuse_null(out, "'out' is NULL")) { return nullptr; }
    KorSetIterator inner{};
    return show(out, kor_set_begin(set, &inner));
}

KorIntSetIterator* kor_int_set_next(KorIntSetIterator* it) {
    if (refuse_null(it, "'it' is NULL") || refuse_null(it->intSet, "'it->intSet' is NULL")) { return nullptr; }
    KorSetIterator inner{it->intSet, &it->value};
    return show(it, kor_set_next(&inner));
}
