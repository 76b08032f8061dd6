/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GPN_H
#define QUORVEL_ABECS_CMD_GPN_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/* How the PIN block is enciphered: under a working key that is sent along, or with DUKPT. */
typedef enum AbecsCmdGpnMethod_E KOR_ENUM_INT32 {
    ABECS_CMD_GPN_METHOD_MK_WK_DES = 0,
    ABECS_CMD_GPN_METHOD_MK_WK_TDES = 1,
    ABECS_CMD_GPN_METHOD_DUKPT_DES = 2,
    ABECS_CMD_GPN_METHOD_DUKPT_TDES = 3
} AbecsCmdGpnMethod_E;

/* One capture: from `min` to `max` digits, 4 to 99, with the prompt `msg` of at most 32 characters. */
typedef struct AbecsCmdGpnEntry {
    uint8_t min;  /* the least digits */
    uint8_t max;  /* the most digits */
    char msg[33]; /* the prompt */
} AbecsCmdGpnEntry;

/* What is asked of the cardholder, and how the PIN comes. */
typedef struct AbecsCmdGpnCmdData {
    AbecsCmdGpnMethod_E method; /* how the PIN is enciphered */
    uint8_t keyIdx;             /* of the key in the PIN pad, 0 to 99 */
    char wkEnc[33];     /* the working key under the master key: 16 hex digits for MK_WK_DES, 32 for MK_WK_TDES */
    char pan[20];       /* the card number in the PIN block: 2 to 19 digits, or empty */
    uint8_t entryCount; /* how many captures */
    AbecsCmdGpnEntry entries[9]; /* the first `entryCount`, 1 to 9 */
} AbecsCmdGpnCmdData;

/*
 * The enciphered PIN block and the key serial number, 16 and 20 hex digits. Leading pairs "30" are taken for filling
 * and dropped: a text that is shorter has lost so many.
 */
typedef struct AbecsCmdGpnRspData {
    char pinBlk[17]; /* the PIN block */
    char ksn[21];    /* the serial number of a DUKPT key */
} AbecsCmdGpnRspData;

/*
 * GPN: has the cardholder enter the PIN.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'cmdData' is NULL"; "Invalid enumerator for %s: %d" with
 * "AbecsCmdGpnMethod_E"; "Invalid value for 'cmdData->keyIdx': %d"; "Invalid length for 'cmdData->wkEnc': %zu
 * (expected: %zu)" (MK_WK methods only: the others ignore the key); "Invalid length for 'cmdData->pan': %zu"; "Invalid
 * length for 'cmdData->entryCount': %d"; for each entry in turn "Invalid value for 'cmdData->entries[%zu].min': %d",
 * "Invalid value for 'cmdData->entries[%zu].max': %d" (below `min` too) and "Invalid length for
 * 'cmdData->entries[%zu].msg': %zu"; characters that the fields do not take. And what the link raises.
 */
KOR_API void abecs_cmd_gpn(AbecsComm* pinpad, const AbecsCmdGpnCmdData* cmdData);

/*
 * Polls for the answer of GPN. Returns RSP_STAT and unblocks the link, with the PIN block in `rspDataOut` when RSP_STAT
 * is 0; or -1 when nothing has come yet, or three damaged frames have, or -2 with the text of a notification in
 * `notification` (33 bytes, or none), the link staying blocked.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL", "'rspDataOut' is NULL"; ILLEGAL_STATE "%s was not sent yet"; PROTOCOL_ERROR
 * "Unrecognized response" for an answer under six bytes, "(%s) Invalid RSP_ID: %s)" for that of another command; those
 * of abecs_packet_read_rsp_stat and abecs_packet_read_notification; IO_ERROR for a malformed field; and what the link
 * raises. An error leaves the blocked state as it is, and may leave a part of the answer in `rspDataOut`.
 */
KOR_API int32_t abecs_cmd_gpn_response(AbecsComm* pinpad, AbecsCmdGpnRspData* rspDataOut, char* notification);

KOR_END_DECLS

#endif
