// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/crypt/des.h"

#include "crypt/block.h"

using namespace kor::crypt;

namespace {

Key key_of(const uint8_t* key) { return {key, kDes.maxKeySize}; }

}  // namespace

void crypt_des_ecb_encrypt(const uint8_t* key, const uint8_t* in, uint8_t* out, size_t len) {
    ecb(kDes, Direction::kEncrypt, key_of(key), {in, out, len});
}

void crypt_des_ecb_decrypt(const uint8_t* key, const uint8_t* in, uint8_t* out, size_t len) {
    ecb(kDes, Direction::kDecrypt, key_of(key), {in, out, len});
}

void crypt_des_cbc_encrypt(const uint8_t* key, const uint8_t* in, uint8_t* out, size_t len, const uint8_t* iv) {
    cbc(kDes, Direction::kEncrypt, key_of(key), {in, out, len}, iv);
}

void crypt_des_cbc_decrypt(const uint8_t* key, const uint8_t* in, uint8_t* out, size_t len, const uint8_t* iv) {
    cbc(kDes, Direction::kDecrypt, key_of(key), {in, out, len}, iv);
}
