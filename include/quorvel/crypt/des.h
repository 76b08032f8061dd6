/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_CRYPT_DES_H
#define QUORVEL_CRYPT_DES_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Single DES over whole blocks of 8 bytes. The conventions below are those of all block ciphers here.
 *
 * 1. `len` bytes are read from `in` and as many written to `out`, which is `in` or apart from it. Nothing is padded.
 *
 * 2. `iv` is one block, read and never updated, so that every call starts a chain of its own. Without one (none) the
 *    chain starts from a block of zeros.
 *
 * 3. Faults, in the order in which they are looked for. ILLEGAL_ARGUMENT: "'key' is NULL"; "'in' is NULL";
 *    "'out' is NULL"; "'len' is zero"; "'len' must be a multiple of %d". A call that fails one of these checks writes
 *    nothing to `out`. CRYPT_ERROR: LibTomCrypt failed, with its text, for instance because the application has
 *    unregistered the cipher.
 *
 * 4. Of the key and of what is made of it, nothing is left in memory when the call returns, with an error or without:
 *    the keys' schedules and the stack that was used are overwritten.
 */

/* Enciphers each block by itself under the 8 bytes of `key`. */
KOR_API void crypt_des_ecb_encrypt(const uint8_t* key, const uint8_t* in, uint8_t* out, size_t len);

/* Deciphers each block by itself under the 8 bytes of `key`. */
KOR_API void crypt_des_ecb_decrypt(const uint8_t* key, const uint8_t* in, uint8_t* out, size_t len);

/* Enciphers the blocks as a chain under the 8 bytes of `key`. */
KOR_API void crypt_des_cbc_encrypt(const uint8_t* key, const uint8_t* in, uint8_t* out, size_t len, const uint8_t* iv);

/* Deciphers a chain of blocks under the 8 bytes of `key`. */
KOR_API void crypt_des_cbc_decrypt(const uint8_t* key, const uint8_t* in, uint8_t* out, size_t len, const uint8_t* iv);

KOR_END_DECLS

#endif
