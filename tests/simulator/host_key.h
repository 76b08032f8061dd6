// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SIMULATOR_HOST_KEY_H
#define QUORVEL_TESTS_SIMULATOR_HOST_KEY_H

#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <string_view>

#include "tests/support/big.h"

// A host's side of the cryptography, straight on libcrypto.

// A fresh RSA key pair of 2048 bits with the exponent 65537.
class HostKey {
public:
    [[nodiscard]] std::string modulus() const { return modulus_.bytes(256); }

    // What the PIN pad enciphered; empty when it is not padded as it must be.
    [[nodiscard]] std::string open_padded(const std::string& cryptogram) const {
        const std::string block = support::Big(cryptogram).to_the(exponent_, modulus_).bytes(256);
        const size_t end = block.find('\0', 2);
        const bool padded = block[0] == 0 && block[1] == 2 && end != std::string::npos && end >= 10;
        return padded ? block.substr(end + 1) : "";
    }

private:
    using Big = support::Big;

    static Big prime() {
        Big drawn;
        do {
            BN_generate_prime_ex(drawn.get(), 1024, 0, nullptr, nullptr, nullptr);
        } while (drawn % Big(65537) == Big(1));
        return drawn;
    }

    Big p_ = prime();
    Big q_ = prime();
    Big modulus_ = p_ * q_;
    Big exponent_ = Big(65537).inverse((p_ - Big(1)) * (q_ - Big(1)));
};

// Two-key triple DES, with a vector chained.
[[nodiscard]] inline std::string tdes_decipher(std::string_view key, std::string_view blocks,
                                               std::string_view vector = {}) {
    const auto bytes = [](std::string_view text) { return reinterpret_cast<const unsigned char*>(text.data()); };
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                                  EVP_CIPHER_CTX_free);
    const EVP_CIPHER* cipher = vector.empty() ? EVP_des_ede_ecb() : EVP_des_ede_cbc();
    std::string clear(blocks.size(), '\0');
    int length = 0;
    EXPECT_EQ(EVP_DecryptInit_ex(context.get(), cipher, nullptr, bytes(key), bytes(vector)), 1);
    EXPECT_EQ(EVP_CIPHER_CTX_set_padding(context.get(), 0), 1);
    EXPECT_EQ(EVP_DecryptUpdate(context.get(), reinterpret_cast<unsigned char*>(clear.data()), &length, bytes(blocks),
                                static_cast<int>(blocks.size())),
              1);
    return clear;
}

#endif
