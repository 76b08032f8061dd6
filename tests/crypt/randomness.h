// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_CRYPT_RANDOMNESS_H
#define QUORVEL_TESTS_CRYPT_RANDOMNESS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <sys/types.h>

namespace support {

// While one lives, `answer` stands for getrandom: it fills what it is given, or part of it, and says how much, or sets
// errno and gives -1. Only one at a time. For programs linked with -Wl,--wrap=getrandom.
class Randomness {
public:
    using Answer = std::function<ssize_t(std::span<uint8_t>)>;

    explicit Randomness(Answer answer);
    ~Randomness();
    Randomness(Randomness&&) = delete;

    // Calls so far.
    [[nodiscard]] static size_t calls();
};

}  // namespace support

#endif
