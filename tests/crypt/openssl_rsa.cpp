// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/crypt/openssl_rsa.h"

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/param_build.h>
#include <openssl/rsa.h>
#include <stdexcept>

namespace support {

namespace {

template <typename T, void (*Free)(T*)>
struct Freer {
    void operator()(T* pointer) const { Free(pointer); }
};
using Context = std::unique_ptr<EVP_PKEY_CTX, Freer<EVP_PKEY_CTX, EVP_PKEY_CTX_free>>;
using Number = std::unique_ptr<BIGNUM, Freer<BIGNUM, BN_free>>;

const unsigned char* bytes(const std::string& text) { return reinterpret_cast<const unsigned char*>(text.data()); }
unsigned char* bytes(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

Number number(const std::string& text) {
    return Number(BN_bin2bn(bytes(text), static_cast<int>(text.size()), nullptr));
}

void require(int result) {
    if (result <= 0) { throw std::runtime_error("libcrypto"); }
}

Context oaep(EVP_PKEY* key, int (*start)(EVP_PKEY_CTX*)) {
    Context context(EVP_PKEY_CTX_new(key, nullptr));
    require(start(context.get()));
    require(EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_OAEP_PADDING));
    return context;
}

}  // namespace

OpensslRsa::OpensslRsa(const std::string& N, const std::string& e, const std::string& d) {
    const Number numbers[]{number(N), number(e), number(d)};
    const std::unique_ptr<OSSL_PARAM_BLD, Freer<OSSL_PARAM_BLD, OSSL_PARAM_BLD_free>> build(OSSL_PARAM_BLD_new());
    require(OSSL_PARAM_BLD_push_BN(build.get(), OSSL_PKEY_PARAM_RSA_N, numbers[0].get()));
    require(OSSL_PARAM_BLD_push_BN(build.get(), OSSL_PKEY_PARAM_RSA_E, numbers[1].get()));
    if (!d.empty()) { require(OSSL_PARAM_BLD_push_BN(build.get(), OSSL_PKEY_PARAM_RSA_D, numbers[2].get())); }
    const std::unique_ptr<OSSL_PARAM, Freer<OSSL_PARAM, OSSL_PARAM_free>> parameters(
        OSSL_PARAM_BLD_to_param(build.get()));
    const Context context(EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr));
    require(EVP_PKEY_fromdata_init(context.get()));
    EVP_PKEY* key = nullptr;
    require(
        EVP_PKEY_fromdata(context.get(), &key, d.empty() ? EVP_PKEY_PUBLIC_KEY : EVP_PKEY_KEYPAIR, parameters.get()));
    key_.reset(key);
}

std::string OpensslRsa::encrypt(const std::string& message) const {
    const Context context = oaep(key_.get(), EVP_PKEY_encrypt_init);
    std::string out(256, '\0');
    size_t length = out.size();
    require(EVP_PKEY_encrypt(context.get(), bytes(out), &length, bytes(message), message.size()));
    out.resize(length);
    return out;
}

std::string OpensslRsa::decrypt(const std::string& cryptogram) const {
    const Context context = oaep(key_.get(), EVP_PKEY_decrypt_init);
    std::string out(256, '\0');
    size_t length = out.size();
    if (EVP_PKEY_decrypt(context.get(), bytes(out), &length, bytes(cryptogram), cryptogram.size()) <= 0) { return {}; }
    out.resize(length);
    return out;
}

}  // namespace support
