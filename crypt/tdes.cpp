// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/crypt/tdes.h"

#include "crypt/block.h"

using namespace kor::crypt;

namespace {

static_assert(kTdes.maxKeySize == sizeof Crypt3DesKey::key);

Key key_of(const Crypt3DesKey* key) { return key != nullptr ? Key{key->key, key->keySize} : Key{}; }

}  // namespace

void crypt_3des_ecb_encrypt(const Crypt3DesKey* key, const uint8_t* in, uint8_t* out, size_t len) {
    ecb(kTdes, Direction::kEncrypt, key_of(key), {in, out, len});
}

void crypt_3des_ecb_decrypt(const Crypt3DesKey* key, const uint8_t* in, uint8_t* out, size_t len) {
    ecb(kTdes, Direction::kDecrypt, key_of(key), {in, out, len});
}

void crypt_3des_cbc_encrypt(const Crypt3DesKey* key, const uint8_t* in, uint8_t* out, size_t len, const uint8_t* iv) {
    cbc(kTdes, Direction::kEncrypt, key_of(key), {in, out, len}, iv);
}

void crypt_3des_cbc_decrypt(const Crypt3DesKey* key, const uint8_t* in, uint8_t* out, size_t len, const uint8_t* iv) {
    cbc(kTdes, Direction::kDecrypt, key_of(key), {in, out, len}, iv);
}
