// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/keys/rsa.h"

#include <algorithm>
#include <fmt/format.h>
#include <memory>
#include <openssl/bn.h>
#include <openssl/crypto.h>
#include <stdexcept>

namespace quorvel::sim {

namespace {

template <auto release>
struct Releaser {
    template <typename Object>
    void operator()(Object* object) const noexcept {
        release(object);
    }
};
using BigNumber = std::unique_ptr<BIGNUM, Releaser<BN_clear_free>>;
using BigNumberContext = std::unique_ptr<BN_CTX, Releaser<BN_CTX_free>>;

void require(bool done, const char* call) {
    if (!done) { throw std::runtime_error(fmt::format("libcrypto: {} failed", call)); }
}

BigNumber big_number(ByteView bytes) {
    BigNumber number(BN_bin2bn(bytes.data(), static_cast<int>(bytes.size()), nullptr));
    require(number != nullptr, "BN_bin2bn");
    return number;
}

}  // namespace

Bytes rsa_raw(const RsaPublicKey& key, ByteView block) {
    const BigNumberContext context(BN_CTX_new());
    const BigNumber base = big_number(block);
    const BigNumber exponent = big_number(key.exponent);
    const BigNumber modulus = big_number(key.modulus);
    const BigNumber result(BN_new());
    require(BN_mod_exp(result.get(), base.get(), exponent.get(), modulus.get(), context.get()) == 1, "BN_mod_exp");
    Bytes bytes(key.modulus.size());
    require(BN_bn2binpad(result.get(), bytes.data(), static_cast<int>(bytes.size())) >= 0, "BN_bn2binpad");
    return bytes;
}

// 00 02, random bytes that are not zero, 00, the message.
Bytes rsa_padded(const RsaPublicKey& key, ByteView message, Random& random) {
    Bytes block{0x00, 0x02};
    // Growing it would leave parts of it behind.
    block.reserve(key.modulus.size());
    Bytes filling = random.bytes(key.modulus.size() - message.size() - 3);
    for (uint8_t& byte : filling) {
        while (byte == 0) { byte = random.bytes(1).front(); }
    }
    append(block, filling);
    block.push_back(0x00);
    append(block, message);
    Bytes cryptogram = rsa_raw(key, block);
    OPENSSL_cleanse(block.data(), block.size());
    return cryptogram;
}

}  // namespace quorvel::sim
