// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/keys/random.h"

#include <algorithm>
#include <openssl/rand.h>
#include <stdexcept>

namespace quorvel::sim {

// The generator's own numbers, not one of the library's distributions, which differ from one library to the next.
Bytes Random::bytes(size_t count) {
    Bytes bytes(count);
    if (seeded_) {
        std::ranges::generate(bytes, [&] { return static_cast<uint8_t>((*seeded_)() >> 24U); });
    } else if (RAND_bytes(bytes.data(), static_cast<int>(count)) != 1) {
        throw std::runtime_error("libcrypto: RAND_bytes failed");
    }
    return bytes;
}

}  // namespace quorvel::sim
