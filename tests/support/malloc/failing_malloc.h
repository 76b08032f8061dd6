// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_MALLOC_FAILING_MALLOC_H
#define QUORVEL_TESTS_SUPPORT_MALLOC_FAILING_MALLOC_H

#include <cstddef>

namespace support {

// While one lives, the n-th malloc from its construction on fails, counted from 1, and all that follow if it says so; 0
// lets all succeed. Only one at a time. For programs linked with -Wl,--wrap=malloc,--wrap=free, and only for calls from
// their object files.
class FailingMalloc {
public:
    explicit FailingMalloc(size_t n, bool onwards = false);
    ~FailingMalloc();
    FailingMalloc(FailingMalloc&&) = delete;

    [[nodiscard]] bool failed() const;

    // Blocks given since construction.
    [[nodiscard]] size_t given() const;

    // Blocks given since construction and not freed.
    [[nodiscard]] size_t kept() const;
};

}  // namespace support

#endif
