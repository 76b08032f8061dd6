/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_PAN_H
#define QUORVEL_ABECS_PAN_H

#include <stddef.h>

#include "quorvel/abecs/wk_pan.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Card numbers and tracks as the PIN pad returns them, with the last 16 digits of the number enciphered under the PAN
 * working key.
 *
 * 1. abecs_pan_encrypt and abecs_pan_decrypt_track both decipher, whatever their names say: the latter what the PIN pad
 *    has enciphered; the former a clear number, for a command that takes one to a PIN pad with the same working key,
 *    which enciphers it back.
 *
 * 2. What does not look enciphered is given back unchanged, without an error.
 *
 * 3. A result is a static text, one for each pair of functions: the next call of the pair overwrites it, so copy it
 *    first. It holds a clear card number until then. After an error whose raise returns, the result is empty.
 *
 * 4. `len` is in characters; a text that ends before is taken as it is. Without `len` the whole text is meant.
 *
 * 5. Faults: ILLEGAL_ARGUMENT, "'pan' is NULL" or "'track' is NULL", then "'key' is NULL", then a `len` above the
 *    limit. RUNTIME_ERROR "Unhandled case": there is something to decipher and the type of the key is none of
 *    AbecsWkPanType_E. CRYPT_ERROR: the cipher failed.
 */

/*
 * A card number of up to 64 characters with its last 16 digits deciphered. A number of 13 to 15 digits is first filled
 * up to 16 with F, and its result is 16 characters long. One of less than 13 characters, or with anything but digits in
 * it, comes back unchanged. "PAN length is too big (max: %zu, requested: %zu)".
 */
KOR_API const char* abecs_pan_encrypt(const char* pan, const AbecsWkPan* key);
KOR_API const char* abecs_pan_encrypt2(const char* pan, size_t len, const AbecsWkPan* key);

/*
 * The clear form of a track of up to 128 characters: the 16 characters before its first ^ or =, or before its end, are
 * deciphered. Filling at the end of the number is left out, which makes the track shorter. A track with less than 16
 * characters there, with anything but hexadecimal digits, or that does not decipher to a number comes back unchanged.
 * "Track length is too big (max: %zu, requested: %zu)".
 */
KOR_API const char* abecs_pan_decrypt_track(const char* track, const AbecsWkPan* key);
KOR_API const char* abecs_pan_decrypt_track2(const char* track, size_t len, const AbecsWkPan* key);

/*
 * The card number in a track of up to 255 characters: from the first digit or blank to the next ^ or =, or to the end,
 * without its blanks. "track length is too big (max: %zu, requested: %zu)".
 */
KOR_API const char* abecs_pan_identify(const char* track);
KOR_API const char* abecs_pan_identify2(const char* track, size_t len);

KOR_END_DECLS

#endif
