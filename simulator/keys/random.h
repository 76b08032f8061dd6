// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_KEYS_RANDOM_H
#define QUORVEL_SIMULATOR_KEYS_RANDOM_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>

#include "simulator/wire.h"

namespace quorvel::sim {

// All that the PIN pad draws: keys, challenges, random numbers, padding. Without a seed it comes from the system; with
// one, the same seed gives the same bytes everywhere, which is for tests only.
class Random {
public:
    Random() = default;
    explicit Random(uint32_t seed) : seeded_(seed) {}

    // Throws std::runtime_error when libcrypto cannot.
    [[nodiscard]] Bytes bytes(size_t count);
    // From 1 to 99, as the random selection of a transaction draws it.
    [[nodiscard]] unsigned percentage() { return bytes(1).front() % 99U + 1; }

private:
    std::optional<std::mt19937> seeded_;
};

}  // namespace quorvel::sim

#endif
