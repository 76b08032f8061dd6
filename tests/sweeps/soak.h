// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SWEEPS_SOAK_H
#define QUORVEL_TESTS_SWEEPS_SOAK_H

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <malloc.h>

#include "quorvel/kor/exception.h"

// What a program holds, which must be the same after the first rounds and after the last.
struct Held {
    size_t heap = mallinfo2().uordblks;
    long descriptors = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    long blocks = open_blocks();

    bool operator==(const Held&) const = default;

private:
    // Try blocks that are open.
    static long open_blocks() {
        long count = 0;
        for (const KorExceptionFrameNode* node = kor_exception_get_frame_node(); node != nullptr;
             node = node->previous) {
            ++count;
        }
        return count;
    }
};

[[noreturn]] inline void fail(const char* what, long round) {
    std::fprintf(stderr, "soak: %s in round %ld: %s\n", what, round, kor_exception_get_message());
    std::exit(EXIT_FAILURE);
}

// Ends the program where the rounds have left something.
inline void compare(const char* rounds, long count, const Held& early, const Held& late) {
    std::printf("%s: %ld, heap %zu and %zu bytes, descriptors %ld and %ld, open try blocks %ld and %ld\n", rounds,
                count, early.heap, late.heap, early.descriptors, late.descriptors, early.blocks, late.blocks);
    if (early != late) { std::exit(EXIT_FAILURE); }
}

#endif
