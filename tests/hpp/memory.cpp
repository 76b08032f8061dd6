// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/hpp/memory.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <malloc.h>
#include <new>

#include "quorvel/kor/exception.h"

extern "C" void* __real_malloc(size_t size);

// What the wrapper allocates fails and is counted as what the library does. Within the library's calls it is the line
// in memory that allocates, which does not count.
void* operator new(size_t size) {
    const bool ofTheLine = kor_exception_get_frame_node() != nullptr;
    if (void* block = ofTheLine ? __real_malloc(size) : std::malloc(size)) { return block; }
    throw std::bad_alloc();
}
void* operator new[](size_t size) { return operator new(size); }
void operator delete(void* block) noexcept {
    if (block != nullptr && block == hpp::watched.block) {
        const auto* bytes = static_cast<const uint8_t*>(block);
        hpp::watched.released = true;
        hpp::watched.wiped =
            std::all_of(bytes, bytes + malloc_usable_size(block), [](uint8_t byte) { return byte == 0; });
    }
    std::free(block);
}
void operator delete[](void* block) noexcept { operator delete(block); }
void operator delete(void* block, size_t) noexcept { operator delete(block); }
void operator delete[](void* block, size_t) noexcept { operator delete(block); }

hpp::Watched hpp::watched;
