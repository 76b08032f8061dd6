// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/heap.h"

#include <cstdlib>

#include "core/raise.h"

using namespace kor;

void* kor_heap_alloc(size_t size, int nullable) {
    // malloc(0) may give none, which would look like exhaustion.
    void* memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr && (nullable & 1) == 0) { raise(KOR_RESULT_MALLOC_ERROR, nullptr); }
    return memory;
}

void kor_heap_free(void* pointer) { std::free(pointer); }
