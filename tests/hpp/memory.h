// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_HPP_MEMORY_H
#define QUORVEL_TESTS_HPP_MEMORY_H

namespace hpp {

// Whether this block holds nothing but zeroes when it is released.
struct Watched {
    const void* block = nullptr;
    bool released = false;
    bool wiped = false;
};
extern Watched watched;

}  // namespace hpp

#endif
