// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CRYPT_STACK_H
#define QUORVEL_CRYPT_STACK_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <strings.h>

namespace kor::crypt {

// Overwrites `kDepth` bytes of the stack below the caller.
template <size_t kDepth>
[[gnu::noinline]] void wipe_used_stack() {
    std::array<uint8_t, kDepth> below;
    explicit_bzero(below.data(), below.size());
}

template <typename Operation>
[[nodiscard, gnu::noinline]] int in_own_frame(const Operation& operation) {
    return operation();
}

// Gives the status of `operation`, of which nothing is left then: neither the variables of the lambda nor what the
// functions that it calls have left in theirs, when all of it takes at most `kDepth` bytes. Let it call nothing small
// last: the first 32 bytes, where a frame has its return address and the registers of its caller, stay.
template <size_t kDepth, typename Operation>
[[nodiscard]] int without_trace(const Operation& operation) {
    const int status = in_own_frame(operation);
    wipe_used_stack<kDepth>();
    return status;
}

}  // namespace kor::crypt

#endif
