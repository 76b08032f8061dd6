// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_ABECS_CMD_RSA_PEER_H
#define QUORVEL_TESTS_ABECS_CMD_RSA_PEER_H

#include <gtest/gtest.h>
#include <memory>
#include <openssl/bn.h>
#include <string>

#include "tests/support/wire.h"

namespace support {

struct FreeNumber {
    void operator()(BIGNUM* number) const { BN_free(number); }
    void operator()(BN_CTX* context) const { BN_CTX_free(context); }
};

// block ^ 65537 mod modulus, in as many upper-case digits as the modulus: what a PIN pad answers to a public key.
inline std::string rsa_encipher(const std::string& block, const std::string& modulusDigits) {
    using Number = std::unique_ptr<BIGNUM, FreeNumber>;
    BIGNUM* read = nullptr;
    BN_hex2bn(&read, modulusDigits.c_str());
    const Number modulus(read);
    const Number exponent(BN_new());
    BN_set_word(exponent.get(), 65537);
    const auto* bytes = reinterpret_cast<const unsigned char*>(block.data());
    const Number base(BN_bin2bn(bytes, static_cast<int>(block.size()), nullptr));
    const std::unique_ptr<BN_CTX, FreeNumber> context(BN_CTX_new());
    const Number result(BN_new());
    BN_mod_exp(result.get(), base.get(), exponent.get(), modulus.get(), context.get());
    std::string power(modulusDigits.size() / 2, '\0');
    BN_bn2binpad(result.get(), reinterpret_cast<unsigned char*>(power.data()), static_cast<int>(power.size()));
    std::string digits;
    for (const char c : to_hex(power)) {
        if (c != ' ') { digits += c; }
    }
    return digits;
}

// `block` enciphered to digits that begin with "30", which are also the padding of hexadecimal fields; for this the
// two bytes at 2 are tried out. One cryptogram in 256 is such.
inline std::string rsa_encipher_like_padding(const std::string& clear, const std::string& modulusDigits) {
    std::string block = clear;
    std::string cryptogram;
    for (int i = 0; i < 8000 && !cryptogram.starts_with("30"); ++i) {
        block[2] = static_cast<char>(1 + i % 255);
        block[3] = static_cast<char>(1 + i / 255);
        cryptogram = rsa_encipher(block, modulusDigits);
    }
    EXPECT_TRUE(cryptogram.starts_with("30"));
    return cryptogram;
}

}  // namespace support

#endif
