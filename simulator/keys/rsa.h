// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_KEYS_RSA_H
#define QUORVEL_SIMULATOR_KEYS_RSA_H

#include <cstddef>

#include "simulator/wire.h"

namespace quorvel::sim {

struct RsaPublicKey {
    Bytes modulus;
    Bytes exponent;
};

// Throws std::runtime_error when libcrypto cannot.
[[nodiscard]] Bytes random_bytes(size_t count);

// What is as long as the modulus comes back as long as the modulus. No padding is added.
[[nodiscard]] Bytes rsa_raw(const RsaPublicKey& key, ByteView block);
// Padded as PKCS #1 v1.5 says for encryption.
[[nodiscard]] Bytes rsa_padded(const RsaPublicKey& key, ByteView message);

}  // namespace quorvel::sim

#endif
