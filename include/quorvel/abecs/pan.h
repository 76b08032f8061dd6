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
 *    which enciphers it back. The key's type decides: ABECS_WK_PAN_TYPE_DES is DES with the first 8 bytes of the key,
 *    the two others 3DES with all 16.
 *
 * 2. What does not look enciphered is given back unchanged, without an error; each function says what that is.
 *
 * 3. A result is a text of the library's, one for each pair of functions, and is not to be freed. The next call of the
 *    pair that succeeds overwrites all of it, so copy it first; the text handed in may be that result. When the link
 *    has a PAN working key, abecs_cmd_gcr_response and abecs_cmd_cke_response overwrite that of
 *    abecs_pan_decrypt_track and leave it empty. Until then it holds a clear card number. A call whose raise returns
 *    gives an empty text and leaves the earlier result where it was.
 *
 * 4. `len` is in characters: a longer text is cut there, a shorter one taken as it is. Without `len` the whole text is
 *    meant. The key and the text are only read, and only during the call.
 *
 * 5. Faults, in this order: ILLEGAL_ARGUMENT "'pan' is NULL" or "'track' is NULL"; "'key' is NULL"; the text quoted
 *    below, with the limit and `len`, for a `len` above the limit, even of a text that ends before. Then, only where
 *    there is something to decipher: RUNTIME_ERROR "Unhandled case" for a type that is none of AbecsWkPanType_E;
 *    CRYPT_ERROR, with the cipher library's words, when the cipher failed.
 */

/*
 * A card number of up to 64 characters with its last 16 digits deciphered, as 16 upper-case hexadecimal digits; digits
 * before them stay. A number of 13 to 15 digits is first filled up to 16 with F, and its result is 16 characters long.
 * One of less than 13 characters, or with anything but digits in it, be it a blank, comes back unchanged.
 * "PAN length is too big (max: %zu, requested: %zu)".
 */
KOR_API const char* abecs_pan_encrypt(const char* pan, const AbecsWkPan* key);
KOR_API const char* abecs_pan_encrypt2(const char* pan, size_t len, const AbecsWkPan* key);

/*
 * The clear form of a track of up to 128 characters: the 16 characters before its first ^ or =, or before its end, are
 * deciphered, and what stands before and behind them stays. Among the 16 that come out E becomes a blank. The first F
 * at one of the last three places is filling: the number ends there, which makes the track up to 3 characters shorter;
 * any other F stays.
 *
 * A track comes back unchanged when it has less than 16 characters before that place, when one of all these is no
 * hexadecimal digit, and when what comes out holds anything but digits, E and F.
 * "Track length is too big (max: %zu, requested: %zu)".
 */
KOR_API const char* abecs_pan_decrypt_track(const char* track, const AbecsWkPan* key);
KOR_API const char* abecs_pan_decrypt_track2(const char* track, size_t len, const AbecsWkPan* key);

/*
 * The card number in a clear track of up to 255 characters: what stands from the first digit or blank (or from the
 * start, when there is neither) to the next ^ or =, or to the end, without its blanks. No key is needed, and nothing
 * checks that it is a number; it is empty when nothing stands there.
 * "track length is too big (max: %zu, requested: %zu)".
 */
KOR_API const char* abecs_pan_identify(const char* track);
KOR_API const char* abecs_pan_identify2(const char* track, size_t len);

KOR_END_DECLS

#endif
