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
 * 1. The four operations read `inLen` bytes from `in` and write at most `outSize` to `out`, which may be `in`. Of the
 *    bytes of `out` only those of the result change. They return how many these are: the size of the modulus, except
 *    for crypt_rsa_decrypt; and 0 after an error whose raise returned. A call that fails leaves `out` as it was.
 *
 * 2. Faults of the arguments, in the order in which they are looked for. ILLEGAL_ARGUMENT: "'privKey' is NULL" or
 *    "'pubKey' is NULL"; "'in' is NULL"; "'out' is NULL"; then, for a public key, "'szN' is zero" and "'sze' is zero"
 *    for a size of 0, and "Invalid key size: %d" for a modulus of other than 128 and 256 bytes. RUNTIME_ERROR
 *    "Unsupported exponent size: %d": a public exponent of more than 4 bytes.
 *
 * 3. CRYPT_ERROR, with LibTomCrypt's text for the fault:
 *    "Invalid sized parameter.": the number in `in` is above the modulus; a message is too long for its padding; or,
 *    where there is padding, the modulus begins with zero bytes.
 *    "Buffer overflow.": `out` is smaller than the modulus; crypt_rsa_decrypt only needs room for the message.
 *    "Invalid argument provided.": the modulus is 1 or even.
 *    "CRYPT_ERROR": what the private operation worked out is not right, because a generated key has been damaged. A
 *    wrong result would tell the primes.
 *    "Error reading the PRNG.": the kernel gave no random bytes; see crypt_rsa_key_new.
 *    What the functions below say in addition. The public operations take memory, and raise MALLOC_ERROR when there is
 *    none.
 *
 * 4. The functions keep no pointer to what they are given, and do not check that the numbers of a key belong together.
 */

/* A private key. It belongs to the caller, until crypt_rsa_key_delete. */
typedef struct CryptRsaKey CryptRsaKey;

/*
 * A public key, which is the caller's and holds nothing else: the first `modulusSize` (128 or 256) and the first
 * `exponentSize` (1 to 4) bytes of the two numbers are used.
 */
typedef struct CryptRsaPublicKey {
    uint32_t modulusSize;  /* in bytes */
    uint32_t exponentSize; /* in bytes */
    uint8_t modulus[256];  /* big-endian */
    uint8_t exponent[4];   /* big-endian */
} CryptRsaPublicKey;

/*
 * Generates a key with a modulus of `size` bytes, 128 or 256, and the public exponent `e`, an odd number above 2. The
 * larger one takes a good fraction of a second. Delete it with crypt_rsa_key_delete.
 *
 * All that is random comes from getrandom(2), which needs no descriptor and no file, and waits for a kernel that has
 * just started and has no randomness yet. Where it fails there is no key, and nothing stands in for it.
 *
 * ILLEGAL_ARGUMENT "Invalid key size: %d". MALLOC_ERROR. CRYPT_ERROR: "Invalid argument provided." for another `e`;
 * "Error reading the PRNG." when getrandom(2) failed, for instance where a filter of system calls forbids it.
 */
KOR_API CryptRsaKey* crypt_rsa_key_new(int32_t size, uint32_t e);

/*
 * A key made of copies of its modulus `N`, of 128 or 256 bytes, its public exponent `e` and its private exponent `d`,
 * of any size. Delete it with crypt_rsa_key_delete. ILLEGAL_ARGUMENT, in this order: "'d' is NULL"; "'szd' is zero";
 * "'N' is NULL"; "'szN' is zero"; "'e' is NULL"; "'sze' is zero"; "Invalid key size: %d" for another `szN`.
 * MALLOC_ERROR.
 */
KOR_API CryptRsaKey* crypt_rsa_key_load(const uint8_t* N, size_t szN, const uint8_t* e, size_t sze, const uint8_t* d,
                                        size_t szd);

/*
 * Overwrites the key, frees it and sets the caller's variable to none; none is ignored. Then no memory of the process,
 * in use or free, holds a private number of the key any more, nor one that it could be worked out from: while the key
 * lived, the library kept them there and nowhere else, and each call overwrote what it had worked out before it
 * returned. This cannot reach what the application holds (the `d` that it loaded, results), nor what left the process
 * while the key lived (a core file, swapped pages, the memory of a forked child).
 */
KOR_API void crypt_rsa_key_delete(CryptRsaKey** key);

/*
 * The size of the modulus, 128 or 256; 0 after an error whose raise returned. ILLEGAL_ARGUMENT "'privKey' is NULL".
 * RUNTIME_ERROR "Unsupported key size: %d": a loaded modulus begins with zero bytes, and has so many without them.
 */
KOR_API int32_t crypt_rsa_key_get_size(const CryptRsaKey* privKey);

/*
 * Writes the public part of a key into `out`, zeros behind each number, and returns `out`; none, with `out` as it was,
 * after an error whose raise returned. The exponent is without leading zeros. ILLEGAL_ARGUMENT: "'privKey' is NULL";
 * "'out' is NULL". RUNTIME_ERROR: "Unsupported modulus size: %d", a loaded modulus begins with zero bytes;
 * "Unsupported exponent size: %d", the exponent has more than 4 bytes.
 */
KOR_API CryptRsaPublicKey* crypt_rsa_get_public_key(const CryptRsaKey* privKey, CryptRsaPublicKey* out);

/*
 * Raises the number in `in`, of any length, to the private exponent. The result has the size of the modulus, without
 * the zero bytes that a loaded one begins with: where the number is smaller, the result begins with zero bytes.
 */
KOR_API size_t crypt_rsa_private_exp(const CryptRsaKey* privKey, const uint8_t* in, size_t inLen, uint8_t* out,
                                     size_t outSize);

/* Raises the number in `in` to the public exponent; the result is as long as that of crypt_rsa_private_exp. */
KOR_API size_t crypt_rsa_public_exp(const CryptRsaPublicKey* pubKey, const uint8_t* in, size_t inLen, uint8_t* out,
                                    size_t outSize);

/*
 * Enciphers a message of at most the modulus' size less 42 bytes, padded by OAEP with SHA-1, an empty label and a seed
 * from getrandom(2). The cryptogram has the size of the modulus.
 */
KOR_API size_t crypt_rsa_encrypt(const CryptRsaPublicKey* pubKey, const uint8_t* in, size_t inLen, uint8_t* out,
                                 size_t outSize);

/*
 * Deciphers what crypt_rsa_encrypt makes and returns the length of the message, which can be 0. CRYPT_ERROR
 * "Invalid OAEP packet": the cryptogram has another size than the modulus, what came out of it is not padded so, or
 * `out` has no room for the message.
 */
KOR_API size_t crypt_rsa_decrypt(const CryptRsaKey* privKey, const uint8_t* in, size_t inLen, uint8_t* out,
                                 size_t outSize);

KOR_END_DECLS

#endif
