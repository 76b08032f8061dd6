// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/collection.h"

#include <cstring>

#include "core/check.h"
#include "quorvel/kor/heap.h"

using namespace kor;

void* kor_collection_copy(const void* data, size_t size) {
    if (refuse_missing(data, size, "data is NULL and size != 0")) { return nullptr; }
    if (data == nullptr) { return nullptr; }
    void* copy = kor_heap_alloc(size, 0);
    return copy != nullptr ? std::memcpy(copy, data, size) : nullptr;
}

void kor_collection_destroy(void* pointer) { kor_heap_free(pointer); }

bool kor_collection_equals(const void* lhs, const void* rhs, size_t size) {
    if (lhs == rhs) { return true; }
    if (lhs == nullptr || rhs == nullptr) { return false; }
    return std::memcmp(lhs, rhs, size) == 0;
}

uint32_t kor_collection_hash_int(int32_t value) { return static_cast<uint32_t>(value); }

uint32_t kor_collection_hash_str(const char* text) {
    if (text == nullptr) { return 0; }
    uint32_t hash = 0;
    for (; *text != '\0'; ++text) {
        // Through a signed byte, because plain char is unsigned on some machines.
        hash = hash * 31U + static_cast<uint32_t>(static_cast<int8_t>(*text));
    }
    return hash;
}
