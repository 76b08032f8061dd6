// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/simulator/host_key.h"

#include <gtest/gtest.h>
#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/rsa.h>

namespace {

const unsigned char* bytes(std::string_view text) { return reinterpret_cast<const unsigned char*>(text.data()); }
unsigned char* bytes(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

}  // namespace

HostKey::HostKey(unsigned bits) : key_(EVP_RSA_gen(bits), EVP_PKEY_free) {}

std::string HostKey::modulus() const {
    BIGNUM* number = nullptr;
    EXPECT_EQ(EVP_PKEY_get_bn_param(key_.get(), OSSL_PKEY_PARAM_RSA_N, &number), 1);
    std::string modulus(static_cast<size_t>(BN_num_bytes(number)), '\0');
    BN_bn2bin(number, bytes(modulus));
    BN_free(number);
    return modulus;
}

std::string HostKey::open_padded(std::string_view cryptogram) const {
    const std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> context(EVP_PKEY_CTX_new(key_.get(), nullptr),
                                                                              EVP_PKEY_CTX_free);
    std::string clear(cryptogram.size(), '\0');
    size_t length = clear.size();
    const bool opened =
        EVP_PKEY_decrypt_init(context.get()) == 1 && EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) == 1
        && EVP_PKEY_decrypt(context.get(), bytes(clear), &length, bytes(cryptogram), cryptogram.size()) == 1;
    clear.resize(opened ? length : 0);
    return clear;
}

std::string tdes_decipher(std::string_view key, std::string_view blocks, std::string_view vector) {
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                                  EVP_CIPHER_CTX_free);
    const EVP_CIPHER* cipher = vector.empty() ? EVP_des_ede_ecb() : EVP_des_ede_cbc();
    std::string clear(blocks.size(), '\0');
    int length = 0;
    EXPECT_EQ(EVP_DecryptInit_ex(context.get(), cipher, nullptr, bytes(key), vector.empty() ? nullptr : bytes(vector)),
              1);
    EXPECT_EQ(EVP_CIPHER_CTX_set_padding(context.get(), 0), 1);
    EXPECT_EQ(EVP_DecryptUpdate(context.get(), bytes(clear), &length, bytes(blocks), static_cast<int>(blocks.size())),
              1);
    return clear;
}
