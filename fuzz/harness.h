// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_FUZZ_HARNESS_H
#define QUORVEL_FUZZ_HARNESS_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

// What each harness is: the fuzzer, or the replay of its corpus, calls it once for each input.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace quorvel::fuzz {

// What must be so whatever the input is.
inline void require(bool holds, const char* what) {
    if (holds) { return; }
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

}  // namespace quorvel::fuzz

#endif
