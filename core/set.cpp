// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "core/set.h"

#include "core/check.h"
#include "core/item_copy.h"
#include "core/raise.h"
#include "quorvel/kor/heap.h"

using namespace kor;

// The order of the fields is a promise, as in a map.
static_assert(offsetof(KorSet, capacity) == 0);
static_assert(offsetof(KorSet, capacity) < offsetof(KorSet, itemHashFn));
static_assert(offsetof(KorSet, itemHashFn) < offsetof(KorSet, itemEqualsFn));
static_assert(offsetof(KorSet, itemEqualsFn) < offsetof(KorSet, itemCpFn));
static_assert(offsetof(KorSet, itemCpFn) < offsetof(KorSet, itemDelFn));
static_assert(offsetof(KorSet, itemDelFn) < offsetof(KorSet, size));
static_assert(offsetof(KorSet, size) < offsetof(KorSet, slots));

namespace {

template <typename Set>
SetTable<Set> table_of(Set& set) {
    return SetTable<Set>(set);
}

auto discard_from(const KorSet& set) {
    return [&set](const KorSetCell& cell) { release(set.itemDelFn, cell.key); };
}

KorSetIterator* show(KorSetIterator* it, const KorSetCell* cell) {
    if (cell == nullptr) { return nullptr; }
    it->item = cell->key;
    return it;
}

}  // namespace

KorSet* kor_set_new(uint32_t initialCapacity, KorItemHashFn itemHashFn, KorItemEqualsFn itemEqualsFn,
                    KorItemCpFn itemCpFn, KorItemDelFn itemDelFn) {
    if (refuse_if(initialCapacity < 2, "Invalid 'initialCapacity': %d", static_cast<int>(initialCapacity))
        || refuse_null(itemHashFn, "'itemHashFn' is NULL") || refuse_null(itemEqualsFn, "'itemEqualsFn' is NULL")
        || refuse_null(itemCpFn, "'itemCpFn' is NULL") || refuse_null(itemDelFn, "'itemDelFn' is NULL")) {
        return nullptr;
    }
    auto* set = static_cast<KorSet*>(kor_heap_alloc(sizeof(KorSet), 0));
    if (set == nullptr) { return nullptr; }
    *set = {initialCapacity, itemHashFn, itemEqualsFn, itemCpFn, itemDelFn, 0, new_slots<KorSetCell>(initialCapacity)};
    if (set->slots == nullptr) {
        kor_heap_free(set);
        return raise(KOR_RESULT_MALLOC_ERROR, nullptr), nullptr;
    }
    return set;
}

// The copy comes first: it may raise, and until then there is nothing to release.
std::optional<kor::SetAddition> kor::prepare_put(KorSet& set, const void* item) {
    KorSetCell** slot = table_of(set).seek(item);
    if (slot == nullptr) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "This point should never have been reached"), std::nullopt;
    }
    if (*slot != nullptr) { return std::nullopt; }
    const auto copy = item_copy(set.itemCpFn, item);
    if (!copy) { return std::nullopt; }
    return table_of(set).prepare(slot, {*copy}, discard_from(set));
}

void* kor::put(KorSet& set, const SetAddition& addition) { return table_of(set).add(addition)->key; }

void kor::abandon_put(KorSet& set, const SetAddition& addition) {
    release(set.itemDelFn, addition.entry->key);
    table_of(set).abandon(addition);
}

void* kor_set_put(KorSet* set, const void* item) {
    if (refuse_null(set, "'set' is NULL")) { return nullptr; }
    const auto addition = prepare_put(*set, item);
    return addition ? put(*set, *addition) : nullptr;
}

bool kor_set_contains(const KorSet* set, const void* item) {
    if (refuse_null(set, "'set' is NULL")) { return false; }
    return table_of(*set).find(item) != nullptr;
}

void kor_set_clear(KorSet* set) {
    if (refuse_null(set, "'set' is NULL")) { return; }
    table_of(*set).clear(discard_from(*set));
}

void kor_set_delete(KorSet** set) { delete_record(set, kor_set_clear); }

uint32_t kor_set_capacity(const KorSet* set) { return refuse_null(set, "'set' is NULL") ? 0 : set->capacity; }

uint32_t kor_set_size(const KorSet* set) { return refuse_null(set, "'set' is NULL") ? 0 : set->size; }

KorSetIterator* kor_set_begin(const KorSet* set, KorSetIterator* out) {
    if (refuse_null(set, "'set' is NULL") || refuse_null(out, "'out' is NULL")) { return nullptr; }
    const KorSetCell* cell = table_of(*set).first_from(set->slots);
    if (cell != nullptr) { out->set = set; }
    return show(out, cell);
}

KorSetIterator* kor_set_next(KorSetIterator* it) {
    if (refuse_null(it, "'it' is NULL") || refuse_null(it->set, "'it->set' is NULL")) { return nullptr; }
    KorSetCell* const* slot = table_of(*it->set).find(it->item);
    if (refuse_null(slot, "'it->item' not present in 'it->set'")) { return nullptr; }
    return show(it, table_of(*it->set).first_from(slot + 1));
}
