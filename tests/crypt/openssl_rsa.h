// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_CRYPT_OPENSSL_RSA_H
#define QUORVEL_TESTS_CRYPT_OPENSSL_RSA_H

#include <memory>
#include <openssl/evp.h>
#include <string>

// The second implementation of RSA with OAEP. Numbers and texts are bytes, kept in strings.
namespace support {

class OpensslRsa {
public:
    // Without `d` the key is a public one.
    OpensslRsa(const std::string& N, const std::string& e, const std::string& d = {});

    [[nodiscard]] std::string encrypt(const std::string& message) const;

    // Empty when it does not decipher.
    [[nodiscard]] std::string decrypt(const std::string& cryptogram) const;

private:
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key_{nullptr, EVP_PKEY_free};
};

}  // namespace support

#endif
