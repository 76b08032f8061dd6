// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/map.h"

#include <cstddef>
#include <optional>

#include "core/attempt.h"
#include "core/check.h"
#include "core/hash_table.h"
#include "core/item_copy.h"
#include "core/raise.h"
#include "quorvel/kor/heap.h"

using namespace kor;

struct KorMapEntry {
    void* key;
    void* value;
};

struct KorMap {
    uint32_t capacity;
    KorItemHashFn keyHashFn;
    KorItemEqualsFn keyEqualsFn;
    KorItemCpFn keyCpFn;
    KorItemCpFn valueCpFn;
    KorItemDelFn keyDelFn;
    KorItemDelFn valueDelFn;
    uint32_t size;
    KorMapEntry** slots;
};
// The order of the fields is a promise, as in a set.
static_assert(offsetof(KorMap, capacity) == 0);
static_assert(offsetof(KorMap, capacity) < offsetof(KorMap, keyHashFn));
static_assert(offsetof(KorMap, keyHashFn) < offsetof(KorMap, keyEqualsFn));
static_assert(offsetof(KorMap, keyEqualsFn) < offsetof(KorMap, keyCpFn));
static_assert(offsetof(KorMap, keyCpFn) < offsetof(KorMap, valueCpFn));
static_assert(offsetof(KorMap, valueCpFn) < offsetof(KorMap, keyDelFn));
static_assert(offsetof(KorMap, keyDelFn) < offsetof(KorMap, valueDelFn));
static_assert(offsetof(KorMap, valueDelFn) < offsetof(KorMap, size));
static_assert(offsetof(KorMap, size) < offsetof(KorMap, slots));

namespace {

template <typename Map>
auto table_of(Map& map) {
    return HashTable<Map, &KorMap::keyHashFn, &KorMap::keyEqualsFn>(map);
}

auto discard_from(const KorMap& map) {
    return [&map](const KorMapEntry& entry) {
        release(map.keyDelFn, entry.key);
        release(map.valueDelFn, entry.value);
    };
}

// None when the copying failed and the raise returned. The block is there to release the first copy when the second
// one cannot be made.
std::optional<KorMapEntry> entry_copy(const KorMap& map, const void* key, const void* value) {
    const auto keyCopy = item_copy(map.keyCpFn, key);
    if (!keyCopy) { return std::nullopt; }
    std::optional<void*> valueCopy;
    attempt([&] { valueCopy = item_copy(map.valueCpFn, value); })
        .cleanup([&] {
            if (!valueCopy) { release(map.keyDelFn, *keyCopy); }
        })
        .run();
    if (!valueCopy) { return std::nullopt; }
    return KorMapEntry{*keyCopy, *valueCopy};
}

void* add(KorMap& map, KorMapEntry** slot, const void* key, const void* value) {
    const auto entry = entry_copy(map, key, value);
    if (!entry) { return nullptr; }
    const auto addition = table_of(map).prepare(slot, *entry, discard_from(map));
    return addition ? table_of(map).add(*addition)->value : nullptr;
}

// The copy comes first: `value` may be the stored value itself, and a failure leaves the old one in place.
void* replace(const KorMap& map, KorMapEntry& entry, const void* value) {
    const auto copy = item_copy(map.valueCpFn, value);
    if (!copy) { return nullptr; }
    void* old = entry.value;
    entry.value = *copy;
    release(map.valueDelFn, old);
    return *copy;
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
    if (refuse_if(initialCapacity < 2, "Invalid initialCapacity: %d", static_cast<int>(initialCapacity))
        || refuse_null(keyHashFn, "keyHashFn is NULL") || refuse_null(keyEqualsFn, "keyEqualsFn is NULL")
        || refuse_null(keyCpFn, "keyCpFn is NULL") || refuse_null(valueCpFn, "valueCpFn is NULL")
        || refuse_null(keyDelFn, "keyDelFn is NULL") || refuse_null(valueDelFn, "valueDelFn is NULL")) {
        return nullptr;
    }
    auto* map = static_cast<KorMap*>(kor_heap_alloc(sizeof(KorMap), 0));
    if (map == nullptr) { return nullptr; }
    *map = {initialCapacity, keyHashFn, keyEqualsFn,
            keyCpFn,         valueCpFn, keyDelFn,
            valueDelFn,      0,         new_slots<KorMapEntry>(initialCapacity)};
    if (map->slots == nullptr) {
        kor_heap_free(map);
        return raise(KOR_RESULT_MALLOC_ERROR, nullptr), nullptr;
    }
    return map;
}

void* kor_map_put(KorMap* map, const void* key, const void* value) {
    if (refuse_null(map, "map is NULL")) { return nullptr; }
    KorMapEntry** slot = table_of(*map).seek(key);
    if (slot == nullptr) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "This point should never have been reached"), nullptr;
    }
    return *slot != nullptr ? replace(*map, **slot, value) : add(*map, slot, key, value);
}

void* kor_map_get(const KorMap* map, const void* key) {
    if (refuse_null(map, "map is NULL")) { return nullptr; }
    KorMapEntry* const* slot = table_of(*map).find(key);
    return slot != nullptr ? (*slot)->value : nullptr;
}

void kor_map_clear(KorMap* map) {
    if (refuse_null(map, "map is NULL")) { return; }
    table_of(*map).clear(discard_from(*map));
}

void kor_map_delete(KorMap** map) { delete_record(map, kor_map_clear); }

uint32_t kor_map_capacity(const KorMap* map) { return refuse_null(map, "map is NULL") ? 0 : map->capacity; }

uint32_t kor_map_size(const KorMap* map) { return refuse_null(map, "map is NULL") ? 0 : map->size; }

KorMapIterator* kor_map_begin(const KorMap* map, KorMapIterator* out) {
    if (refuse_null(map, "map is NULL") || refuse_null(out, "'out' is NULL")) { return nullptr; }
    const KorMapEntry* entry = table_of(*map).first_from(map->slots);
    if (entry != nullptr) { out->map = map; }
    return show(out, entry);
}

KorMapIterator* kor_map_next(KorMapIterator* it) {
    if (refuse_null(it, "'it' is NULL") || refuse_null(it->map, "'it->map' is NULL")) { return nullptr; }
    KorMapEntry* const* slot = table_of(*it->map).find(it->key);
    if (refuse_null(slot, "'it->key' not present in 'it->map'")) { return nullptr; }
    return show(it, table_of(*it->map).first_from(slot + 1));
}
