// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/crypt/randomness.h"

#include <utility>

extern "C" {
ssize_t __real_getrandom(void* out, size_t size, unsigned flags);
ssize_t __wrap_getrandom(void* out, size_t size, unsigned flags);
}

namespace {

support::Randomness::Answer current;
size_t count = 0;

}  // namespace

ssize_t __wrap_getrandom(void* out, size_t size, unsigned flags) {
    if (!current) { return __real_getrandom(out, size, flags); }
    ++count;
    return current({static_cast<uint8_t*>(out), size});
}

namespace support {

Randomness::Randomness(Answer answer) {
    current = std::move(answer);
    count = 0;
}

Randomness::~Randomness() { current = nullptr; }

size_t Randomness::calls() { return count; }

}  // namespace support
