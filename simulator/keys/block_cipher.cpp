// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/keys/block_cipher.h"

#include <fmt/format.h>
#include <memory>
#include <openssl/evp.h>
#include <stdexcept>

namespace quorvel::sim {

namespace {

constexpr size_t kPairSize = 2 * kBlockSize;

struct Release {
    void operator()(EVP_CIPHER_CTX* context) const noexcept { EVP_CIPHER_CTX_free(context); }
};

void require(bool done, const char* call) {
    if (!done) { throw std::runtime_error(fmt::format("libcrypto: {} failed", call)); }
}

// libcrypto keeps DES itself in a provider that not every machine loads; with twice the same key triple DES is DES.
Bytes two_keys(ByteView key) {
    if (key.size() != kBlockSize && key.size() != kPairSize) {
        throw std::invalid_argument(fmt::format("a key of {} bytes", key.size()));
    }
    Bytes pair(key.begin(), key.end());
    if (pair.size() == kBlockSize) { append(pair, key); }
    return pair;
}

Bytes run(const EVP_CIPHER* cipher, ByteView key, ByteView blocks, ByteView vector, bool forward) {
    if (blocks.size() % kBlockSize != 0) {
        throw std::invalid_argument(fmt::format("{} bytes to cipher", blocks.size()));
    }
    const Bytes pair = two_keys(key);
    const std::unique_ptr<EVP_CIPHER_CTX, Release> context(EVP_CIPHER_CTX_new());
    const uint8_t* const start = vector.empty() ? nullptr : vector.data();
    require(EVP_CipherInit_ex(context.get(), cipher, nullptr, pair.data(), start, forward ? 1 : 0) == 1,
            "EVP_CipherInit_ex");
    require(EVP_CIPHER_CTX_set_padding(context.get(), 0) == 1, "EVP_CIPHER_CTX_set_padding");
    Bytes result(blocks.size());
    int length = 0;
    require(
        EVP_CipherUpdate(context.get(), result.data(), &length, blocks.data(), static_cast<int>(blocks.size())) == 1,
        "EVP_CipherUpdate");
    return result;
}

}  // namespace

Bytes encipher(ByteView key, ByteView blocks) { return run(EVP_des_ede_ecb(), key, blocks, {}, true); }

Bytes encipher(ByteView key, ByteView blocks, ByteView vector) {
    if (vector.size() != kBlockSize) {
        throw std::invalid_argument(fmt::format("a vector of {} bytes", vector.size()));
    }
    return run(EVP_des_ede_cbc(), key, blocks, vector, true);
}

Bytes decipher(ByteView key, ByteView blocks) { return run(EVP_des_ede_ecb(), key, blocks, {}, false); }

Bytes masked(ByteView bytes, ByteView mask) {
    Bytes result(bytes.begin(), bytes.end());
    for (size_t i = 0; i < result.size(); ++i) { result[i] ^= mask[i % mask.size()]; }
    return result;
}

}  // namespace quorvel::sim
