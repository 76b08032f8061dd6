/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_ENB_H
#define QUORVEL_ABECS_CMD_ENB_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/mk.h"
#include "quorvel/abecs/wk_pan.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * ENB: has the PIN pad encipher one block under a working key, which travels under a master key. Two functions prepare
 * what is sent; they need no link.
 */

/* The cipher, by the PIN pad's own number. */
typedef enum AbecsCmdEnbMethod_E KOR_ENUM_INT32 {
    ABECS_CMD_ENB_METHOD_0 = 0,
    ABECS_CMD_ENB_METHOD_1 = 1
} AbecsCmdEnbMethod_E;

/* What is enciphered, and under which key. */
typedef struct AbecsCmdEnbCmdData {
    AbecsCmdEnbMethod_E method; /* the cipher */
    uint8_t keyIdx;             /* of the master key in the PIN pad, 0 to 99 */
    char wkEnc[33]; /* the working key under the master key: 32 hex digits; fewer are filled up in front with "30" */
    char data[17];  /* the block: 16 hex digits, filled up likewise */
} AbecsCmdEnbCmdData;

/*
 * Makes `wkEnc`: enciphers a working key of 32 hex digits under the master key, block by block, and writes 32 digits in
 * lower case into `out` (33 bytes). Returns `out`. Digits missing at the end are taken for zeros.
 *
 * ILLEGAL_ARGUMENT, in this order, `out` being untouched: "Missing 'clearWk'"; "Missing 'mk'"; "Missing 'out'";
 * "Invalid enumerator for %s: %d" with "AbecsMkType_E"; the errors of abecs_data_from_hex for the text. CRYPT_ERROR.
 */
KOR_API char* abecs_cmd_enb_encrypt_wk(const char* clearWk, const AbecsMk* mk, char* out);

/*
 * Makes `data` for a PIN pad that has a PAN working key: deciphers a block of 16 hex digits under that key, which the
 * PIN pad undoes by enciphering, and writes 16 digits in lower case into `out` (17 bytes). Returns `out`. Digits
 * missing at the end are taken for zeros.
 *
 * ILLEGAL_ARGUMENT, in this order, `out` being untouched: "Missing 'clearData'"; "Missing 'wkPan'"; "Missing 'out'";
 * "Invalid enumerator for %s: %d" with "AbecsWkPanType_E"; the errors of abecs_data_from_hex for the text. CRYPT_ERROR.
 */
KOR_API char* abecs_cmd_enb_encode_data(const char* clearData, const AbecsWkPan* wkPan, char* out);

/*
 * Sends ENB and returns RSP_STAT. When that is 0, `out` (17 bytes) holds the enciphered block, 16 hex digits. Leading
 * pairs "30" are taken for filling and dropped: a text that is shorter has lost so many. After an error `out` is as it
 * was, or empty.
 *
 * ILLEGAL_ARGUMENT: "'pinpad' is NULL"; "'cmdData' is NULL"; "'out' is NULL"; "Invalid enumerator for %s: %d" with
 * "AbecsCmdEnbMethod_E"; then, field by field, "Number length (%zu) is greater than field length (%zu)" for an index
 * above 99, "Invalid hex byte at index %zu", and "Field does not have enough room for data" for too many digits.
 * PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes, "(%s) Invalid RSP_ID: %s)" for that of another
 * command; IO_ERROR for a malformed field; and what the link raises.
 */
KOR_API int32_t abecs_cmd_enb(AbecsComm* pinpad, const AbecsCmdEnbCmdData* cmdData, char* out);

KOR_END_DECLS

#endif
