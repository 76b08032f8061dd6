// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_CORE_COUNTED_H
#define QUORVEL_TESTS_CORE_COUNTED_H

#include <string>

#include "quorvel/kor/collection.h"
#include "quorvel/kor/list.h"
#include "quorvel/kor/map.h"
#include "quorvel/kor/string.h"

// Functions for containers of texts that count how often they are called. The hash of a text is its length, so that
// the order of the slots is plain to see.
namespace counted {

inline int copies = 0;
inline int deletions = 0;

inline void reset() { copies = deletions = 0; }

inline void* copy(const void* item) {
    ++copies;
    return kor_string_new(static_cast<const char*>(item));
}

inline void destroy(void* item) {
    ++deletions;
    kor_collection_destroy(item);
}

inline bool equals(const void* lhs, const void* rhs) {
    return kor_string_equals(static_cast<const char*>(lhs), static_cast<const char*>(rhs));
}

inline uint32_t hash(const void* item) { return static_cast<uint32_t>(kor_string_len(static_cast<const char*>(item))); }

inline KorMap* new_map(uint32_t capacity) {
    reset();
    return kor_map_new(capacity, hash, equals, copy, copy, destroy, destroy);
}

inline std::string text_of(const void* item) { return item != nullptr ? static_cast<const char*>(item) : "none"; }

inline std::string entries(const KorMap* map) {
    std::string all;
    KorMapIterator position{};
    for (auto* it = kor_map_begin(map, &position); it != nullptr; it = kor_map_next(it)) {
        all += text_of(it->key) + "=" + text_of(it->value) + " ";
    }
    return all;
}

inline std::string items(const KorList* list) {
    std::string all;
    for (auto* at = kor_list_first(list); at != nullptr; at = kor_list_next(at)) {
        all += text_of(kor_list_item(at)) + " ";
    }
    return all;
}

}  // namespace counted

#endif
