// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/crypt/wiped.h"

#include <algorithm>
#include <malloc.h>
#include <vector>

extern "C" {
void __real_kor_heap_free(void* pointer);
void __wrap_kor_heap_free(void* pointer);
void __real_explicit_bzero(void* begin, size_t size);
void __wrap_explicit_bzero(void* begin, size_t size);
void __real___explicit_bzero_chk(void* begin, size_t size, size_t room);
void __wrap___explicit_bzero_chk(void* begin, size_t size, size_t room);
}

namespace {

struct Range {
    const char* begin;
    std::string content;
};

std::vector<Range> wiped;
std::string freed;

void note(const char* begin, size_t size) { wiped.push_back({begin, {begin, begin + size}}); }

}  // namespace

void __wrap_kor_heap_free(void* pointer) {
    if (pointer != nullptr) { freed.assign(static_cast<const char*>(pointer), malloc_usable_size(pointer)); }
    __real_kor_heap_free(pointer);
}

void __wrap_explicit_bzero(void* begin, size_t size) {
    note(static_cast<const char*>(begin), size);
    __real_explicit_bzero(begin, size);
}

void __wrap___explicit_bzero_chk(void* begin, size_t size, size_t room) {
    note(static_cast<const char*>(begin), size);
    __real___explicit_bzero_chk(begin, size, room);
}

namespace support {

void forget_wiped() { wiped.clear(); }

bool was_wiped(const void* begin, size_t size) {
    const auto* first = static_cast<const char*>(begin);
    return std::any_of(wiped.begin(), wiped.end(), [&](const Range& range) {
        return range.begin <= first && first + size <= range.begin + range.content.size();
    });
}

bool bytes_were_wiped(const std::string& bytes, size_t size) {
    return std::any_of(wiped.begin(), wiped.end(), [&](const Range& range) {
        return range.content.size() == size && range.content.find(bytes) != std::string::npos;
    });
}

bool bytes_were_wiped(const std::string& bytes) {
    return std::any_of(wiped.begin(), wiped.end(),
                       [&](const Range& range) { return range.content.find(bytes) != std::string::npos; });
}

const std::string& last_freed() { return freed; }

}  // namespace support
