/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_CHP_H
#define QUORVEL_ABECS_CMD_CHP_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * CHP: lets the host speak to a chip card in one of the slots, and take a PIN for it. The cardholder may take time:
 * abecs_cmd_chp sends the command and blocks the link, abecs_cmd_chp_response is called until it returns something else
 * than -1 and -2.
 */

/* The slot of a chip, by the protocol's number. */
typedef enum AbecsCmdChpSlot_E KOR_ENUM_INT32 {
    ABECS_CMD_CHP_SLOT_0 = 0,
    ABECS_CMD_CHP_SLOT_1 = 1,
    ABECS_CMD_CHP_SLOT_2 = 2,
    ABECS_CMD_CHP_SLOT_3 = 3,
    ABECS_CMD_CHP_SLOT_4 = 4,
    ABECS_CMD_CHP_SLOT_5 = 5,
    ABECS_CMD_CHP_SLOT_6 = 6,
    ABECS_CMD_CHP_SLOT_7 = 7,
    ABECS_CMD_CHP_SLOT_8 = 8,
    ABECS_CMD_CHP_SLOT_9 = 9
} AbecsCmdChpSlot_E;

/* What is done with the chip, by the protocol's number. */
typedef enum AbecsCmdChpOper_E KOR_ENUM_INT32 {
    ABECS_CMD_CHP_OPER_0 = 0,
    ABECS_CMD_CHP_OPER_1 = 1,
    ABECS_CMD_CHP_OPER_2 = 2,
    ABECS_CMD_CHP_OPER_3 = 3
} AbecsCmdChpOper_E;

/* The format of the PIN block, by the protocol's number. */
typedef enum AbecsCmdChpPinFmt_E KOR_ENUM_INT32 {
    ABECS_CMD_CHP_PIN_FMT_0 = 0,
    ABECS_CMD_CHP_PIN_FMT_1 = 1,
    ABECS_CMD_CHP_PIN_FMT_2 = 2,
    ABECS_CMD_CHP_PIN_FMT_9 = 9
} AbecsCmdChpPinFmt_E;

/*
 * What is asked for. Operations 2 and 3 hand the card a command; operation 3 takes a PIN for it, showing a message
 * meanwhile, without carriage returns. Of a text without a NUL the last character of its member does not count.
 */
typedef struct AbecsCmdChpParam {
    AbecsCmdChpSlot_E slot;     /* of the chip */
    AbecsCmdChpOper_E oper;     /* what is done with it */
    char chpCmd[521];           /* hexadecimal: up to 260 bytes; for operation 3, 4 bytes */
    AbecsCmdChpPinFmt_E pinFmt; /* operation 3 only */
    char message[33];           /* operation 3 only: up to 32 characters */
} AbecsCmdChpParam;

/*
 * Sends CHP and blocks the link on it.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'param' is NULL"; "Invalid enumerator for %s: %d" for slot and
 * operation; "Length of 'param->chpCmd' is invalid: %zu" when it is odd, or not 8 for operation 3; "Invalid enumerator
 * for %s: %d" for the format; "Invalid hex byte at index %zu"; "Invalid character (0x%02X) at position %zu" for one
 * that the display does not take. And what the link raises.
 */
KOR_API void abecs_cmd_chp(AbecsComm* pinpad, const AbecsCmdChpParam* param);

/*
 * Reads the answer. Returns -1 (ABECS_RSP_STAT_ST_PROCESSING) when there is none yet, or three damaged frames have
 * come; -2 (ABECS_RSP_STAT_ST_NOTIFICATION) after a message for the cardholder, stored in `notification` (33 bytes, or
 * null), and in both cases the link stays blocked; else RSP_STAT, the link being free again. When that is 0, `out`
 * (515 bytes) holds what the card has answered, in hexadecimal digits without leading pairs "30".
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL", "'out' is NULL"; ILLEGAL_STATE "%s was not sent yet"; PROTOCOL_ERROR
 * "Unrecognized response" for an answer under six bytes, "(%s) Invalid RSP_ID: %s)" for that of another command; those
 * of abecs_packet_read_notification; IO_ERROR for a malformed field; ILLEGAL_ARGUMENT for more than 257 bytes; and what
 * the link raises. An error leaves the blocked state as it is, and `out` as it was, or empty.
 */
KOR_API int32_t abecs_cmd_chp_response(AbecsComm* pinpad, char* out, char* notification);

KOR_END_DECLS

#endif
