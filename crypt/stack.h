// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CRYPT_STACK_H
#define QUORVEL_CRYPT_STACK_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <strings.h>

// GCC can clear the registers on the way out of a function. What they still hold would come back into memory with the
// next call that is bound lazily, because the dynamic linker saves them.
#if __has_cpp_attribute(gnu::zero_call_used_regs)
#define QUORVEL_CLEAR_REGISTERS [[gnu::zero_call_used_regs("all")]]
#else
#define QUORVEL_CLEAR_REGISTERS
#endif

namespace kor::crypt {

// Overwrites `kDepth` bytes of the stack below the caller, where the functions that it has called left their variables.
template <size_t kDepth>
QUORVEL_CLEAR_REGISTERS [[gnu::noinline]] void wipe_used_stack() {
    std::array<uint8_t, kDepth> below;
    explicit_bzero(below.data(), below.size());
}

}  // namespace kor::crypt

#endif
