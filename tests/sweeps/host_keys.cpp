// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/sweeps/host_keys.h"

#include <map>
#include <memory>
#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>

#include "quorvel/crypt/rsa.h"
#include "tests/abecs/cmd/rsa_peer.h"
#include "tests/sweeps/rig.h"

extern "C" {
CryptRsaKey* __wrap_crypt_rsa_key_new(int32_t size, uint32_t e);
}

namespace sweeps {

namespace {

using namespace support::literals;

struct HostKeys {
    std::string modulus;
    std::string exponent;
};

std::string number_of(const EVP_PKEY* key, const char* name) {
    BIGNUM* number = nullptr;
    EVP_PKEY_get_bn_param(key, name, &number);
    std::string bytes(static_cast<size_t>(BN_num_bytes(number)), '\0');
    BN_bn2bin(number, reinterpret_cast<unsigned char*>(bytes.data()));
    BN_free(number);
    return bytes;
}

const HostKeys& keys_of(size_t size) {
    static std::map<size_t, HostKeys> made;
    if (!made.contains(size)) {
        const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_RSA_gen(8 * size), EVP_PKEY_free);
        made[size] = {number_of(key.get(), OSSL_PKEY_PARAM_RSA_N), number_of(key.get(), OSSL_PKEY_PARAM_RSA_D)};
    }
    return made[size];
}

std::string enciphered(const std::string& block) {
    std::string digits = support::to_hex(keys_of(block.size()).modulus);
    std::erase(digits, ' ');
    return support::rsa_encipher(block, digits);
}

}  // namespace

std::string session_answer() {
    return "OPN000515256" + enciphered("0002"_hex + std::string(237, '\x5A') + '\0' + kSession);
}

std::string pan_key_answer() {
    return "DWK000256" + enciphered("T19 filling" + std::string(32, 'A') + std::string(84, '\xA5') + 'X');
}

}  // namespace sweeps

CryptRsaKey* __wrap_crypt_rsa_key_new(int32_t size, uint32_t) {
    static const std::string kExponent("\1\0\1", 3);
    const auto& [modulus, exponent] = sweeps::keys_of(static_cast<size_t>(size));
    const auto bytes = [](const std::string& text) { return reinterpret_cast<const uint8_t*>(text.data()); };
    return crypt_rsa_key_load(bytes(modulus), modulus.size(), bytes(kExponent), 3, bytes(exponent), exponent.size());
}
