// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_SCRATCH_H
#define QUORVEL_TESTS_SUPPORT_SCRATCH_H

#include <cstddef>

namespace support {

// Zeros as the record that a function takes or fills, whichever it is.
struct Scratch {
    template <typename Record>
    operator Record*() {
        static_assert(sizeof(Record) <= sizeof room);
        return reinterpret_cast<Record*>(room);
    }

    alignas(std::max_align_t) char room[8192] = {};
};

}  // namespace support

#endif
