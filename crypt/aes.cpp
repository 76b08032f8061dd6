// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/crypt/aes.h"

#include <cstring>

#include "core/check.h"
#include "crypt/block.h"
#include "quorvel/kor/heap.h"

using namespace kor;
using namespace kor::crypt;

struct CryptAesCipher {
    uint8_t key[32];
    uint32_t keySize;
};

namespace {

static_assert(kAes.maxKeySize == sizeof CryptAesCipher::key);

Key key_of(const CryptAesCipher* cipher) { return cipher != nullptr ? Key{cipher->key, cipher->keySize} : Key{}; }

}  // namespace

CryptAesCipher* crypt_aes_cipher_new(const uint8_t* key, size_t len) {
    if (refuse_null(key, "'key' is NULL") || refuse_if(!kAes.takes(len), "Unsupported key size: %zu", len)) {
        return nullptr;
    }
    auto* cipher = static_cast<CryptAesCipher*>(kor_heap_alloc(sizeof(CryptAesCipher), 0));
    if (cipher == nullptr) { return nullptr; }
    *cipher = {};
    std::memcpy(cipher->key, key, len);
    cipher->keySize = static_cast<uint32_t>(len);
    return cipher;
}

void crypt_aes_cipher_delete(CryptAesCipher** cipher) {
    if (cipher == nullptr || *cipher == nullptr) { return; }
    explicit_bzero(*cipher, sizeof **cipher);
    kor_heap_free(*cipher);
    *cipher = nullptr;
}

void crypt_aes_ecb_encrypt(const CryptAesCipher* cipher, const uint8_t* in, uint8_t* out, size_t len) {
    ecb(kAes, Direction::kEncrypt, key_of(cipher), {in, out, len});
}

void crypt_aes_ecb_decrypt(const CryptAesCipher* cipher, const uint8_t* in, uint8_t* out, size_t len) {
    ecb(kAes, Direction::kDecrypt, key_of(cipher), {in, out, len});
}

void crypt_aes_cbc_encrypt(const CryptAesCipher* cipher, const uint8_t* in, uint8_t* out, size_t len,
                           const uint8_t* iv) {
    cbc(kAes, Direction::kEncrypt, key_of(cipher), {in, out, len}, iv);
}

void crypt_aes_cbc_decrypt(const CryptAesCipher* cipher, const uint8_t* in, uint8_t* out, size_t len,
                           const uint8_t* iv) {
    cbc(kAes, Direction::kDecrypt, key_of(cipher), {in, out, len}, iv);
}
