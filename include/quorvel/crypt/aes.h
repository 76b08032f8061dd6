/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_CRYPT_AES_H
#define QUORVEL_CRYPT_AES_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * AES over whole blocks of 16 bytes, with the conventions of quorvel/crypt/des.h; the first check is
 * "'cipher' is NULL" and the last one "'len' must be a multiple of 16".
 */

/* A key, for as many calls as wanted. It belongs to the caller, until crypt_aes_cipher_delete. */
typedef struct CryptAesCipher CryptAesCipher;

/*
 * Copies a key of `len` bytes: 16, 24 or 32. Delete it with crypt_aes_cipher_delete. ILLEGAL_ARGUMENT:
 * "'key' is NULL"; "Unsupported key size: %zu". MALLOC_ERROR.
 */
KOR_API CryptAesCipher* crypt_aes_cipher_new(const uint8_t* key, size_t len);

/* Overwrites and frees the key and sets the caller's variable to none; none is ignored. */
KOR_API void crypt_aes_cipher_delete(CryptAesCipher** cipher);

/* Enciphers each block by itself. */
KOR_API void crypt_aes_ecb_encrypt(const CryptAesCipher* cipher, const uint8_t* in, uint8_t* out, size_t len);

/* Deciphers each block by itself. */
KOR_API void crypt_aes_ecb_decrypt(const CryptAesCipher* cipher, const uint8_t* in, uint8_t* out, size_t len);

/* Enciphers the blocks as a chain. */
KOR_API void crypt_aes_cbc_encrypt(const CryptAesCipher* cipher, const uint8_t* in, uint8_t* out, size_t len,
                                   const uint8_t* iv);

/* Deciphers a chain of blocks. */
KOR_API void crypt_aes_cbc_decrypt(const CryptAesCipher* cipher, const uint8_t* in, uint8_t* out, size_t len,
                                   const uint8_t* iv);

KOR_END_DECLS

#endif
