// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SIMULATOR_HOST_KEY_H
#define QUORVEL_TESTS_SIMULATOR_HOST_KEY_H

#include <memory>
#include <openssl/evp.h>
#include <string>
#include <string_view>

// A host's side of the cryptography, straight on libcrypto.

// A fresh RSA key pair with the exponent 65537.
class HostKey {
public:
    explicit HostKey(unsigned bits);

    [[nodiscard]] std::string modulus() const;

    // What the PIN pad enciphered; empty when it cannot be read.
    [[nodiscard]] std::string open_padded(std::string_view cryptogram) const;

private:
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key_;
};

// Two-key triple DES, with a vector chained.
[[nodiscard]] std::string tdes_decipher(std::string_view key, std::string_view blocks, std::string_view vector = {});

#endif
