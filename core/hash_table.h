// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_HASH_TABLE_H
#define QUORVEL_CORE_HASH_TABLE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <type_traits>

#include "core/attempt.h"
#include "core/raise.h"
#include "quorvel/kor/collection.h"
#include "quorvel/kor/heap.h"

namespace kor {

// Null on exhaustion; raises nothing, so that callers can first release what they hold.
template <typename Entry>
[[nodiscard]] Entry** new_slots(uint32_t count) {
    auto** slots = static_cast<Entry**>(kor_heap_alloc(count * sizeof(Entry*), 1));
    if (slots != nullptr) { std::fill_n(slots, count, nullptr); }
    return slots;
}

// A record and its slots, once `clear` has emptied it.
template <typename Record>
void delete_record(Record** record, void (*clear)(Record*)) {
    if (record == nullptr || *record == nullptr) { return; }
    clear(*record);
    kor_heap_free((*record)->slots);
    kor_heap_free(*record);
    *record = nullptr;
}

// Open addressing with linear probing, for maps and sets alike, in the record of either: its `capacity`, `size` and
// `slots`, and the two functions named. An entry is a heap cell with a `void* key`, so that an entry whose key is null
// still fills its slot.
template <typename Record, auto kHashFn, auto kEqualsFn>
class HashTable {
public:
    using Entry = std::remove_pointer_t<std::remove_pointer_t<decltype(Record::slots)>>;

    explicit HashTable(Record& record) : record_(record) {}

    // The slot of `key`, or the empty one where it belongs; null when a full cycle meets neither.
    [[nodiscard]] Entry** seek(const void* key) const {
        return probe(record_.slots, record_.capacity, key, [&](const Entry* entry) { return same(entry->key, key); });
    }

    // The slot that holds `key`; null when it is absent.
    [[nodiscard]] Entry** find(const void* key) const {
        Entry** slot = seek(key);
        return slot != nullptr && *slot != nullptr ? slot : nullptr;
    }

    // The entry of the first occupied slot from `slot` on; null at the end.
    [[nodiscard]] Entry* first_from(Entry* const* slot) const {
        Entry* const* end = record_.slots + record_.capacity;
        Entry* const* occupied = std::find_if(slot, end, [](const Entry* entry) { return entry != nullptr; });
        return occupied != end ? *occupied : nullptr;
    }

    // A new entry with all that it needs, and of which the table knows nothing yet.
    struct Addition {
        Entry** slot;
        Entry* entry;
        Entry** larger;  // the slots of the table once it has grown, or null
    };

    // Everything about an addition that can fail, for the empty `slot` of the key of `content`. None after a raise,
    // before which `discard` has released what `content` holds.
    template <typename Discard>
    [[nodiscard]] std::optional<Addition> prepare(Entry** slot, const Entry& content, Discard&& discard) const {
        const uint32_t count = 2 * record_.capacity;
        const bool grows = is_crowded(record_.size + 1);
        Addition addition{slot, static_cast<Entry*>(kor_heap_alloc(sizeof(Entry), 1)), nullptr};
        if (addition.entry != nullptr && grows) { addition.larger = new_slots<Entry>(count); }
        if (addition.entry == nullptr || (grows && addition.larger == nullptr)) {
            discard(content);
            abandon(addition);
            return raise(KOR_RESULT_MALLOC_ERROR, nullptr), std::nullopt;
        }
        *addition.entry = content;
        bool complete = !grows;
        if (grows) {
            attempt([&] {
                spread(addition, count);
                complete = true;
            })
                .cleanup([&] {
                    if (complete) { return; }
                    discard(content);
                    abandon(addition);
                })
                .run();
        }
        return complete ? std::optional(addition) : std::nullopt;
    }

    // Frees an addition that will not be made, but for what its entry holds.
    void abandon(const Addition& addition) const {
        kor_heap_free(addition.entry);
        kor_heap_free(addition.larger);
    }

    Entry* add(const Addition& addition) const {
        *addition.slot = addition.entry;
        ++record_.size;
        if (addition.larger != nullptr) {
            kor_heap_free(record_.slots);
            record_.slots = addition.larger;
            record_.capacity *= 2;
        }
        return addition.entry;
    }

    template <typename Discard>
    void clear(Discard&& discard) const {
        for (uint32_t i = 0; i < record_.capacity; ++i) {
            Entry* entry = record_.slots[i];
            if (entry == nullptr) { continue; }
            record_.slots[i] = nullptr;
            --record_.size;
            const Entry content = *entry;
            kor_heap_free(entry);
            discard(content);
        }
    }

private:
    template <typename Found>
    Entry** probe(Entry** array, uint32_t count, const void* key, Found&& found) const {
        const uint32_t home = key != nullptr ? (record_.*kHashFn)(key) % count : 0;
        uint32_t index = home;
        do {
            if (array[index] == nullptr || found(array[index])) { return &array[index]; }
            if (++index == count) { index = 0; }
        } while (index != home);
        return nullptr;
    }

    bool same(const void* stored, const void* key) const {
        if (stored == nullptr || key == nullptr) { return stored == key; }
        return (record_.*kEqualsFn)(stored, key);
    }

    bool is_crowded(uint32_t count) const {
        return static_cast<float>(count) / static_cast<float>(record_.capacity) >= 0.75F;
    }

    // Every entry, the new one included, into the larger slots, in the order of the old ones: iteration order depends
    // on it. A hash function may raise.
    void spread(const Addition& addition, uint32_t count) const {
        for (uint32_t i = 0; i < record_.capacity; ++i) {
            Entry* entry = &record_.slots[i] == addition.slot ? addition.entry : record_.slots[i];
            if (entry == nullptr) { continue; }
            Entry** slot = probe(addition.larger, count, entry->key, [](const Entry*) { return false; });
            if (slot == nullptr) {
                return raise(KOR_RESULT_RUNTIME_ERROR, "This point should never have been reached");
            }
            *slot = entry;
        }
    }

    Record& record_;
};

}  // namespace kor

#endif
