/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_CRYPT_RSA_H
#define QUORVEL_CRYPT_RSA_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * RSA with keys of 1024 and 2048 bits. All numbers are big-endian byte strings and all sizes are bytes.
 *
 * 1. The four operations read `inLen` bytes from `in` and write at most `outSize` to `out`, which may be `in`; give
 *    `out` the size of the modulus. They return how many bytes they wrote, and 0 after an error whose raise returned.
 *    A call that fails leaves `out` as it was.
 *
 * 2. Faults of the operations, in the order in which they are looked for. ILLEGAL_ARGUMENT: "'privKey' is NULL" or
 *    "'pubKey' is NULL"; "'in' is NULL"; "'out' is NULL"; then, for a public key, what crypt_rsa_key_load says of a
 *    modulus and an exponent. RUNTIME_ERROR "Unsupported exponent size: %d": a public exponent of more than 4 bytes.
 *    CRYPT_ERROR: LibTomCrypt refused, with its text, for instance because `in` is not below the modulus, a message
 *    is too long for its padding, or `out` is too small.
 */

/* A private key. */
typedef struct CryptRsaKey CryptRsaKey;

/* A public key: the first `modulusSize` (128 or 256) and `exponentSize` (1 to 4) bytes of the two numbers are used. */
typedef struct CryptRsaPublicKey {
    uint32_t modulusSize;
    uint32_t exponentSize;
    uint8_t modulus[256];
    uint8_t exponent[4];
} CryptRsaPublicKey;

/*
 * Generates a key with a modulus of `size` bytes, 128 or 256, and the public exponent `e`, an odd number above 2. It
 * takes a good fraction of a second. Delete it with crypt_rsa_key_delete. ILLEGAL_ARGUMENT "Invalid key size: %d".
 * MALLOC_ERROR. CRYPT_ERROR: the generation failed, with LibTomCrypt's text.
 */
KOR_API CryptRsaKey* crypt_rsa_key_new(int32_t size, uint32_t e);

/*
 * A key made of its modulus `N`, its public exponent `e` and its private exponent `d`. Delete it with
 * crypt_rsa_key_delete. ILLEGAL_ARGUMENT, in this order: "'d' is NULL"; "'szd' is zero"; "'N' is NULL";
 * "'szN' is zero"; "'e' is NULL"; "'sze' is zero"; "Invalid key size: %d" for a `szN` other than 128 and 256.
 * MALLOC_ERROR. CRYPT_ERROR with LibTomCrypt's text.
 */
KOR_API CryptRsaKey* crypt_rsa_key_load(const uint8_t* N, size_t szN, const uint8_t* e, size_t sze, const uint8_t* d,
                                        size_t szd);

/* Overwrites the private numbers, frees the key and sets the caller's variable to none. */
KOR_API void crypt_rsa_key_delete(CryptRsaKey** key);

/*
 * The size of the modulus, 128 or 256. ILLEGAL_ARGUMENT "'privKey' is NULL". RUNTIME_ERROR
 * "Unsupported key size: %d": a loaded modulus begins with zero bytes.
 */
KOR_API int32_t crypt_rsa_key_get_size(const CryptRsaKey* privKey);

/*
 * Writes the public part of a key into `out` and returns `out`. ILLEGAL_ARGUMENT: "'privKey' is NULL";
 * "'out' is NULL". RUNTIME_ERROR: "Unsupported modulus size: %d", a loaded modulus begins with zero bytes;
 * "Unsupported exponent size: %d", the exponent has more than 4 bytes.
 */
KOR_API CryptRsaPublicKey* crypt_rsa_get_public_key(const CryptRsaKey* privKey, CryptRsaPublicKey* out);

/*
 * Raises `in` to the private exponent. The result has the size of the modulus: where the number is smaller, it begins
 * with zero bytes.
 */
KOR_API size_t crypt_rsa_private_exp(const CryptRsaKey* privKey, const uint8_t* in, size_t inLen, uint8_t* out,
                                     size_t outSize);

/* Raises `in` to the public exponent; the result is as long as that of crypt_rsa_private_exp. */
KOR_API size_t crypt_rsa_public_exp(const CryptRsaPublicKey* pubKey, const uint8_t* in, size_t inLen, uint8_t* out,
                                    size_t outSize);

/*
 * Enciphers a message of at most the modulus' size less 42 bytes, padded by OAEP with SHA-1 and an empty label. The
 * cryptogram has the size of the modulus.
 */
KOR_API size_t crypt_rsa_encrypt(const CryptRsaPublicKey* pubKey, const uint8_t* in, size_t inLen, uint8_t* out,
                                 size_t outSize);

/*
 * Deciphers what crypt_rsa_encrypt makes and returns the length of the message. CRYPT_ERROR "Invalid OAEP packet":
 * the cryptogram has another size than the modulus, what came out of it is not padded so, or `out` has no room for
 * the message.
 */
KOR_API size_t crypt_rsa_decrypt(const CryptRsaKey* privKey, const uint8_t* in, size_t inLen, uint8_t* out,
                                 size_t outSize);

KOR_END_DECLS

#endif
