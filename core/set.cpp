// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/set.h"

#include "core/hash_table.h"
#include "core/raise.h"
#include "quorvel/kor/heap.h"

using kor::owned_copy;
using kor::raise;
using kor::release;

namespace {

struct Cell {
    void* key;
};

}  // namespace

struct KorSet {
    kor::HashTable<Cell> table;
    KorItemCpFn itemCpFn;
    KorItemDelFn itemDelFn;
};

namespace {

void discard(const KorSet& set, Cell* cell) {
    void* item = cell->key;
    kor_heap_free(cell);
    release(set.itemDelFn, item);
}

KorSetIterator* show(KorSetIterator* it, const Cell* cell) {
    if (cell == nullptr) { return nullptr; }
    it->item = cell->key;
    return it;
}

}  // namespace

KorSet* kor_set_new(uint32_t initialCapacity, KorItemHashFn itemHashFn, KorItemEqualsFn itemEqualsFn,
                    KorItemCpFn itemCpFn, KorItemDelFn itemDelFn) {
    if (initialCapacity < 2) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid 'initialCapacity': %d", static_cast<int>(initialCapacity)),
               nullptr;
    }
    if (itemHashFn == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'itemHashFn' is NULL"), nullptr; }
    if (itemEqualsFn == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'itemEqualsFn' is NULL"), nullptr; }
    if (itemCpFn == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'itemCpFn' is NULL"), nullptr; }
    if (itemDelFn == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'itemDelFn' is NULL"), nullptr; }
    auto* set = static_cast<KorSet*>(kor_heap_alloc(sizeof(KorSet), 0));
    if (set == nullptr) { return nullptr; }
    *set = {{itemHashFn, itemEqualsFn, initialCapacity, 0, kor::HashTable<Cell>::new_slots(initialCapacity)},
            itemCpFn,
            itemDelFn};
    if (set->table.slots == nullptr) {
        kor_heap_free(set);
        return raise(KOR_RESULT_MALLOC_ERROR, nullptr), nullptr;
    }
    return set;
}

void* kor_set_put(KorSet* set, const void* item) {
    if (set == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'set' is NULL"), nullptr; }
    Cell** slot = set->table.seek(item);
    if (slot == nullptr) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "This point should never have been reached"), nullptr;
    }
    if (*slot != nullptr) { return nullptr; }
    const auto fill = [&](Cell& cell) { cell.key = owned_copy(set->itemCpFn, item); };
    const Cell* cell = set->table.insert(slot, fill, [&](Cell* unused) { discard(*set, unused); });
    return cell != nullptr ? cell->key : nullptr;
}

bool kor_set_contains(const KorSet* set, const void* item) {
    if (set == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'set' is NULL"), false; }
    return set->table.find(item) != nullptr;
}

void kor_set_clear(KorSet* set) {
    if (set == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'set' is NULL"); }
    set->table.clear([&](Cell* cell) { discard(*set, cell); });
}

void kor_set_delete(KorSet** set) {
    if (set == nullptr || *set == nullptr) { return; }
    kor_set_clear(*set);
    kor_heap_free((*set)->table.slots);
    kor_heap_free(*set);
    *set = nullptr;
}

uint32_t kor_set_capacity(const KorSet* set) {
    if (set == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'set' is NULL"), 0; }
    return set->table.capacity;
}

uint32_t kor_set_size(const KorSet* set) {
    if (set == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'set' is NULL"), 0; }
    return set->table.size;
}

KorSetIterator* kor_set_begin(const KorSet* set, KorSetIterator* out) {
    if (set == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'set' is NULL"), nullptr; }
    if (out == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL"), nullptr; }
    const Cell* cell = set->table.first_from(set->table.slots);
    if (cell != nullptr) { out->set = set; }
    return show(out, cell);
}

KorSetIterator* kor_set_next(KorSetIterator* it) {
    if (it == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'it' is NULL"), nullptr; }
    if (it->set == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'it->set' is NULL"), nullptr; }
    Cell* const* slot = it->set->table.find(it->item);
    if (slot == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'it->item' not present in 'it->set'"), nullptr; }
    return show(it, it->set->table.first_from(slot + 1));
}
