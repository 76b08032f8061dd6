// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CRYPT_RSA_KEY_H
#define QUORVEL_CRYPT_RSA_KEY_H

#include <span>

#include "crypt/modulus.h"
#include "quorvel/crypt/rsa.h"

// All there is of a key, in one block that never moves, so that whoever overwrites the block overwrites the key.
struct CryptRsaKey {
    size_t size;  // of the block: the private exponent of a loaded key stands behind the members

    size_t modulusSize;   // bytes
    size_t exponentSize;  // bytes, which do not all stand below when they are more than four
    std::array<uint8_t, 4> exponent;
    kor::crypt::Number modulus;

    // Of a generated key, which has no use for the private exponent itself.
    size_t primeSize;  // limbs; 0: the key was loaded
    kor::crypt::Half p;
    kor::crypt::Half q;
    kor::crypt::Half dP;  // the inverse of the exponent modulo p - 1
    kor::crypt::Half dQ;  // and modulo q - 1
    kor::crypt::Half qP;  // the inverse of q modulo p

    [[nodiscard]] std::span<kor::crypt::Limb> private_exponent() {
        return {reinterpret_cast<kor::crypt::Limb*>(this + 1), (size - sizeof *this) / sizeof(kor::crypt::Limb)};
    }
    [[nodiscard]] std::span<const kor::crypt::Limb> private_exponent() const {
        return const_cast<CryptRsaKey*>(this)->private_exponent();
    }
};

namespace kor::crypt {

// Makes a key with a modulus of `size` bytes. A key that could not be made holds secrets too.
[[nodiscard]] int generate(CryptRsaKey& key, size_t size, uint32_t e);

// Raises `in` to the private exponent and writes the result into the first bytes of `out`, as many as the modulus has.
[[nodiscard]] int raise_to_private(const CryptRsaKey& key, std::span<const uint8_t> in, std::span<uint8_t> out);

// Whether p and q are so different, by more than 2 ^ (their bits - 100), that they cannot be found near the root of
// their product.
[[nodiscard]] bool far_apart(const Limb* p, const Limb* q, size_t size);

}  // namespace kor::crypt

#endif
