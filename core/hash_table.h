// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_HASH_TABLE_H
#define QUORVEL_CORE_HASH_TABLE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/attempt.h"
#include "core/raise.h"
#include "quorvel/kor/collection.h"
#include "quorvel/kor/heap.h"

namespace kor {

// The copy that a container keeps of an item. A null item is kept as null: copy functions need not know of it.
inline void* owned_copy(KorItemCpFn copyFn, const void* item) { return item != nullptr ? copyFn(item) : nullptr; }

inline void release(KorItemDelFn deleteFn, void* item) {
    if (item != nullptr) { deleteFn(item); }
}

// Open addressing with linear probing, for maps and sets alike: an Entry is a heap cell with a `void* key`, so that
// an entry whose key is null still fills its slot.
template <typename Entry>
struct HashTable {
    KorItemHashFn hashFn;
    KorItemEqualsFn equalsFn;
    uint32_t capacity;
    uint32_t size;
    Entry** slots;

    // Null on exhaustion; raises nothing, so that callers can first release what they hold.
    static Entry** new_slots(uint32_t count) {
        auto** slots = static_cast<Entry**>(kor_heap_alloc(count * sizeof(Entry*), 1));
        if (slots != nullptr) { std::fill_n(slots, count, nullptr); }
        return slots;
    }

    // The slot of `key`, or the empty one where it belongs; null when a full cycle meets neither.
    Entry** seek(const void* key) const {
        return probe(slots, capacity, key, [&](const Entry* entry) { return same(entry->key, key); });
    }

    // The slot that holds `key`; null when it is absent.
    Entry** find(const void* key) const {
        Entry** slot = seek(key);
        return slot != nullptr && *slot != nullptr ? slot : nullptr;
    }

    // The entry of the first occupied slot from `slot` on; null at the end.
    Entry* first_from(Entry* const* slot) const {
        Entry* const* end = slots + capacity;
        Entry* const* occupied = std::find_if(slot, end, [](const Entry* entry) { return entry != nullptr; });
        return occupied != end ? *occupied : nullptr;
    }

    // Puts a new entry into the empty `slot` of its key. `fill` gives the entry its copies; `discard` frees them and
    // the entry. Everything that can fail happens before the table changes for good. Null when it failed and the
    // raise returned.
    template <typename Fill, typename Discard>
    Entry* insert(Entry** slot, Fill&& fill, Discard&& discard) {
        Entry* entry = nullptr;
        Entry** larger = nullptr;
        bool complete = false;
        attempt([&] {
            entry = static_cast<Entry*>(kor_heap_alloc(sizeof(Entry), 0));
            *entry = {};
            fill(*entry);
            *slot = entry;
            if (is_crowded(size + 1)) {
                larger = static_cast<Entry**>(kor_heap_alloc(2 * size_t{capacity} * sizeof(Entry*), 0));
                spread(larger, 2 * capacity);
            }
            complete = true;
        })
            .cleanup([&] {
                if (complete) { return; }
                *slot = nullptr;
                if (entry != nullptr) { discard(entry); }
                kor_heap_free(larger);
            })
            .run();
        if (!complete) { return nullptr; }
        ++size;
        if (larger != nullptr) { adopt(larger, 2 * capacity); }
        return entry;
    }

    template <typename Discard>
    void clear(Discard&& discard) {
        for (uint32_t i = 0; i < capacity; ++i) {
            Entry* entry = slots[i];
            if (entry == nullptr) { continue; }
            slots[i] = nullptr;
            --size;
            discard(entry);
        }
    }

private:
    template <typename Found>
    Entry** probe(Entry** array, uint32_t count, const void* key, Found&& found) const {
        const uint32_t home = key != nullptr ? hashFn(key) % count : 0;
        uint32_t index = home;
        do {
            if (array[index] == nullptr || found(array[index])) { return &array[index]; }
            if (++index == count) { index = 0; }
        } while (index != home);
        return nullptr;
    }

    bool same(const void* stored, const void* key) const {
        if (stored == nullptr || key == nullptr) { return stored == key; }
        return equalsFn(stored, key);
    }

    bool is_crowded(uint32_t count) const { return static_cast<float>(count) / static_cast<float>(capacity) >= 0.75F; }

    // Every entry into the array `larger`, in the order of the old slots: iteration order depends on it.
    void spread(Entry** larger, uint32_t count) const {
        std::fill_n(larger, count, nullptr);
        for (uint32_t i = 0; i < capacity; ++i) {
            if (slots[i] == nullptr) { continue; }
            Entry** slot = probe(larger, count, slots[i]->key, [](const Entry*) { return false; });
            if (slot == nullptr) {
                return raise(KOR_RESULT_RUNTIME_ERROR, "This point should never have been reached");
            }
            *slot = slots[i];
        }
    }

    void adopt(Entry** larger, uint32_t count) {
        kor_heap_free(slots);
        slots = larger;
        capacity = count;
    }
};

}  // namespace kor

#endif
