// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/support/malloc/failing_malloc.h"

#include <algorithm>
#include <array>

#include "quorvel/kor/exception.h"

extern "C" {
void* __real_malloc(size_t size);
void __real_free(void* pointer);
void* __wrap_malloc(size_t size);
void __wrap_free(void* pointer);
}

namespace {

// In static storage, because noting a block must not allocate one.
std::array<void*, 512> blocks{};
bool armed = false;
bool hasFailed = false;
bool goesOn = false;
size_t countdown = 0;
size_t all = 0;

// Puts `to` in the place of the first `from`; false when there is none.
bool note(void* from, void* to) {
    auto* place = std::find(blocks.begin(), blocks.end(), from);
    if (place == blocks.end()) { return false; }
    *place = to;
    return true;
}

// Frame nodes are made once and kept: running out of memory for one ends the process, and is not what is tested.
void make_frame_nodes(int depth) {
    KOR_TRY {
        if (depth > 1) { make_frame_nodes(depth - 1); }
    }
    KOR_END_TRY;
}

}  // namespace

void* __wrap_malloc(size_t size) {
    if (!armed) { return __real_malloc(size); }
    if (countdown != 0 && --countdown == 0) {
        hasFailed = true;
        countdown = goesOn ? 1 : 0;
        return nullptr;
    }
    void* block = __real_malloc(size);
    ++all;
    if (!note(nullptr, block)) { __builtin_trap(); }  // a block that is not noted would be a leak that is not seen
    return block;
}

void __wrap_free(void* pointer) {
    if (pointer != nullptr) { note(pointer, nullptr); }
    __real_free(pointer);
}

namespace support {

FailingMalloc::FailingMalloc(size_t n, bool onwards) {
    make_frame_nodes(16);
    blocks.fill(nullptr);
    hasFailed = false;
    goesOn = onwards;
    countdown = n;
    all = 0;
    armed = true;
}

FailingMalloc::~FailingMalloc() { armed = false; }

bool FailingMalloc::failed() const { return hasFailed; }

size_t FailingMalloc::given() const { return all; }

size_t FailingMalloc::kept() const {
    return blocks.size() - static_cast<size_t>(std::count(blocks.begin(), blocks.end(), nullptr));
}

}  // namespace support
