/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_DWK_H
#define QUORVEL_ABECS_CMD_DWK_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/mk.h"
#include "quorvel/abecs/wk_pan.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * DWK: gives the PIN pad and the host a new working key for card numbers, until the session is closed. From then on
 * card numbers and tracks travel under it (quorvel/abecs/pan.h).
 *
 * 1. Both functions return RSP_STAT. When that is 0, `wkPanOut`, where it is given, holds the key in clear: overwrite
 *    it after use. The library keeps no other copy than the link's.
 *
 * 2. With `setOnLink` the link takes the key (abecs_comm_set_wk_pan) and the card commands decipher with it. Without,
 *    what the link had is removed as by abecs_comm_set_wk_pan with null, which zeroes the bytes of the session key as
 *    well: in an encrypted session the PIN pad does not understand the commands after that, until a secure
 *    abecs_cmd_opn begins a new one.
 *
 * 3. PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes, "(%s) Invalid RSP_ID: %s)" for that of
 *    another command; CRYPT_ERROR when a cipher operation fails; MALLOC_ERROR; and what the link raises. After an
 *    error, or another RSP_STAT than 0, the link and `wkPanOut` are as they were. The PIN pad need not be: if its
 *    answer was lost or damaged, it may go by the new key already, which nobody else has. Give it another one, or
 *    close the session, before a card is read.
 */

/*
 * The host makes the key and sends it under the master key `mk`; the new key is of the same kind. Without `setOnLink`
 * the link goes on in the layout of protected mode, for an application that deciphers by itself; but CKE still ends
 * track 2 after 37 of its 40 characters and begins track 3 with the rest, so read cards with GCR. The key comes from
 * kor_system_random, that is, from the C library's rand: it follows from the time at which that was seeded, or from
 * what the application has given to srand, and can be worked out by whoever knows either. Where that matters, let the
 * PIN pad make the key with abecs_cmd_dwk2.
 *
 * ILLEGAL_ARGUMENT: "'pinpad' is NULL"; "'mk' is NULL"; "Invalid enumerator for %s: %d" with "AbecsMkType_E"; "Invalid
 * master key index: %d (max: 99)".
 */
KOR_API int32_t abecs_cmd_dwk1(AbecsComm* pinpad, const AbecsMk* mk, AbecsWkPan* wkPanOut, bool setOnLink);

/*
 * The PIN pad makes the key, for triple DES, and sends it under an RSA-1024 key that is generated for this call.
 * Without `setOnLink` the link leaves protected mode, which the PIN pad does not: GCR and CKE then misread the layout
 * of its answers.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL". PROTOCOL_ERROR for a key that is not what it should be: "Invalid RSP_LEN: %zu
 * (expected: 256)"; "(%s) Invalid header: %02X (expected: 0x54)"; "(%s) Invalid layout version: %d (expected: 1)";
 * "(%s) Invalid block end (expected: 'X', read: '%c')". IO_ERROR for malformed fields.
 */
KOR_API int32_t abecs_cmd_dwk2(AbecsComm* pinpad, AbecsWkPan* wkPanOut, bool setOnLink);

KOR_END_DECLS

#endif
