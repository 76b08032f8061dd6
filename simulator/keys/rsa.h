// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_KEYS_RSA_H
#define QUORVEL_SIMULATOR_KEYS_RSA_H

#include "simulator/keys/random.h"
#include "simulator/wire.h"

namespace quorvel::sim {

struct RsaPublicKey {
    Bytes modulus;
    Bytes exponent;
};

// Throw std::runtime_error when libcrypto cannot.

// What is as long as the modulus comes back as long as the modulus. No padding is added.
[[nodiscard]] Bytes rsa_raw(const RsaPublicKey& key, ByteView block);
// Padded as PKCS #1 v1.5 says for encryption.
[[nodiscard]] Bytes rsa_padded(const RsaPublicKey& key, ByteView message, Random& random);

}  // namespace quorvel::sim

#endif
