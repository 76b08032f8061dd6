/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_CRYPT_TDES_H
#define QUORVEL_CRYPT_TDES_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Triple DES over whole blocks of 8 bytes, with the conventions of quorvel/crypt/des.h. After "'key' is NULL" the size
 * of the key is looked at: ILLEGAL_ARGUMENT "Invalid key size: %zu" for other than 16 and 24.
 */

/* `keySize` is 24, or 16 for a key whose third part is its first one; the first `keySize` bytes of `key` are used. */
typedef struct Crypt3DesKey {
    uint8_t key[24];  /* in clear */
    uint32_t keySize; /* 16 or 24 */
} Crypt3DesKey;

/* Enciphers each block by itself. */
KOR_API void crypt_3des_ecb_encrypt(const Crypt3DesKey* key, const uint8_t* in, uint8_t* out, size_t len);

/* Deciphers each block by itself. */
KOR_API void crypt_3des_ecb_decrypt(const Crypt3DesKey* key, const uint8_t* in, uint8_t* out, size_t len);

/* Enciphers the blocks as a chain. */
KOR_API void crypt_3des_cbc_encrypt(const Crypt3DesKey* key, const uint8_t* in, uint8_t* out, size_t len,
                                    const uint8_t* iv);

/* Deciphers a chain of blocks. */
KOR_API void crypt_3des_cbc_decrypt(const Crypt3DesKey* key, const uint8_t* in, uint8_t* out, size_t len,
                                    const uint8_t* iv);

KOR_END_DECLS

#endif
