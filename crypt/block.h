// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CRYPT_BLOCK_H
#define QUORVEL_CRYPT_BLOCK_H

#include <cstddef>
#include <cstdint>

#include "crypt/registry.h"

// The engine under the block ciphers: all that DES, 3DES and AES have in common.
namespace kor::crypt {

struct BlockCipher {
    int Registry::*index;
    size_t blockSize;
    size_t minKeySize;
    size_t maxKeySize;
    const char* noKey;  // what is said when the caller gave none

    // Between the limits, the key sizes of all these ciphers go in steps of 8 bytes.
    [[nodiscard]] constexpr bool takes(size_t keySize) const {
        return minKeySize <= keySize && keySize <= maxKeySize && keySize % 8 == 0;
    }
};

inline constexpr BlockCipher kDes{&Registry::des, 8, 8, 8, "'key' is NULL"};
inline constexpr BlockCipher kTdes{&Registry::tdes, 8, 16, 24, "'key' is NULL"};
inline constexpr BlockCipher kAes{&Registry::aes, 16, 16, 32, "'cipher' is NULL"};

enum class Direction { kEncrypt, kDecrypt };

// `bytes` none: the caller gave no key.
struct Key {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
};

struct Blocks {
    const uint8_t* in;
    uint8_t* out;
    size_t len;
};

void ecb(const BlockCipher& cipher, Direction direction, const Key& key, const Blocks& blocks);

// Without `iv` the chain starts from a block of zeros.
void cbc(const BlockCipher& cipher, Direction direction, const Key& key, const Blocks& blocks, const uint8_t* iv);

}  // namespace kor::crypt

#endif
