// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/map.h"

#include "core/hash_table.h"
#include "core/raise.h"
#include "quorvel/kor/heap.h"

using kor::owned_copy;
using kor::raise;
using kor::release;

struct KorMapEntry {
    void* key;
    void* value;
};

struct KorMap {
    kor::HashTable<KorMapEntry> table;
    KorItemCpFn keyCpFn;
    KorItemCpFn valueCpFn;
    KorItemDelFn keyDelFn;
    KorItemDelFn valueDelFn;
};

namespace {

void discard(const KorMap& map, KorMapEntry* entry) {
    void* key = entry->key;
    void* value = entry->value;
    kor_heap_free(entry);
    release(map.keyDelFn, key);
    release(map.valueDelFn, value);
}

void* add(KorMap& map, KorMapEntry** slot, const void* key, const void* value) {
    const auto fill = [&](KorMapEntry& entry) {
        entry.key = owned_copy(map.keyCpFn, key);
        entry.value = owned_copy(map.valueCpFn, value);
    };
    const KorMapEntry* entry = map.table.insert(slot, fill, [&](KorMapEntry* unused) { discard(map, unused); });
    return entry != nullptr ? entry->value : nullptr;
}

// The copy comes first: `value` may be the stored value itself, and a failure leaves the old one in place. The try
// block is there to know of a failure whose raise returns.
void* replace(const KorMap& map, KorMapEntry& entry, const void* value) {
    void* copy = nullptr;
    bool complete = false;
    kor::attempt([&] {
        copy = owned_copy(map.valueCpFn, value);
        complete = true;
    }).run();
    if (!complete) { return nullptr; }
    void* old = entry.value;
    entry.value = copy;
    release(map.valueDelFn, old);
    return copy;
}

KorMapIterator* show(KorMapIterator* it, const KorMapEntry* entry) {
    if (entry == nullptr) { return nullptr; }
    it->key = entry->key;
    it->value = entry->value;
    return it;
}

}  // namespace

KorMap* kor_map_new(uint32_t initialCapacity, KorItemHashFn keyHashFn, KorItemEqualsFn keyEqualsFn, KorItemCpFn keyCpFn,
                    KorItemCpFn valueCpFn, KorItemDelFn keyDelFn, KorItemDelFn valueDelFn) {
    if (initialCapacity < 2) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid initialCapacity: %d", static_cast<int>(initialCapacity)),
               nullptr;
    }
    if (keyHashFn == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "keyHashFn is NULL"), nullptr; }
    if (keyEqualsFn == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "keyEqualsFn is NULL"), nullptr; }
    if (keyCpFn == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "keyCpFn is NULL"), nullptr; }
    if (valueCpFn == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "valueCpFn is NULL"), nullptr; }
    if (keyDelFn == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "keyDelFn is NULL"), nullptr; }
    if (valueDelFn == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "valueDelFn is NULL"), nullptr; }
    auto* map = static_cast<KorMap*>(kor_heap_alloc(sizeof(KorMap), 0));
    if (map == nullptr) { return nullptr; }
    *map = {{keyHashFn, keyEqualsFn, initialCapacity, 0, kor::HashTable<KorMapEntry>::new_slots(initialCapacity)},
            keyCpFn,
            valueCpFn,
            keyDelFn,
            valueDelFn};
    if (map->table.slots == nullptr) {
        kor_heap_free(map);
        return raise(KOR_RESULT_MALLOC_ERROR, nullptr), nullptr;
    }
    return map;
}

void* kor_map_put(KorMap* map, const void* key, const void* value) {
    if (map == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "map is NULL"), nullptr; }
    KorMapEntry** slot = map->table.seek(key);
    if (slot == nullptr) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "This point should never have been reached"), nullptr;
    }
    return *slot != nullptr ? replace(*map, **slot, value) : add(*map, slot, key, value);
}

void* kor_map_get(const KorMap* map, const void* key) {
    if (map == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "map is NULL"), nullptr; }
    KorMapEntry* const* slot = map->table.find(key);
    return slot != nullptr ? (*slot)->value : nullptr;
}

void kor_map_clear(KorMap* map) {
    if (map == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "map is NULL"); }
    map->table.clear([&](KorMapEntry* entry) { discard(*map, entry); });
}

void kor_map_delete(KorMap** map) {
    if (map == nullptr || *map == nullptr) { return; }
    kor_map_clear(*map);
    kor_heap_free((*map)->table.slots);
    kor_heap_free(*map);
    *map = nullptr;
}

uint32_t kor_map_capacity(const KorMap* map) {
    if (map == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "map is NULL"), 0; }
    return map->table.capacity;
}

uint32_t kor_map_size(const KorMap* map) {
    if (map == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "map is NULL"), 0; }
    return map->table.size;
}

KorMapIterator* kor_map_begin(const KorMap* map, KorMapIterator* out) {
    if (map == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "map is NULL"), nullptr; }
    if (out == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL"), nullptr; }
    const KorMapEntry* entry = map->table.first_from(map->table.slots);
    if (entry != nullptr) { out->map = map; }
    return show(out, entry);
}

KorMapIterator* kor_map_next(KorMapIterator* it) {
    if (it == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'it' is NULL"), nullptr; }
    if (it->map == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'it->map' is NULL"), nullptr; }
    KorMapEntry* const* slot = it->map->table.find(it->key);
    if (slot == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'it->key' not present in 'it->map'"), nullptr; }
    return show(it, it->map->table.first_from(slot + 1));
}
