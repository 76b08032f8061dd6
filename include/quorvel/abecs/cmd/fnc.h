/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_FNC_H
#define QUORVEL_ABECS_CMD_FNC_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * What the acquirer has answered. Texts need no NUL when they fill their member, and one that is longer than its field
 * is refused. One of hexadecimal digits that is shorter than its length says is filled up at its start with pairs "30".
 */
typedef struct AbecsCmdFncData {
    int32_t commSt;    /* whether the acquirer was reached: 0, 1 or 9 */
    char arc[3];       /* its response code */
    size_t issDatLen;  /* bytes in issDat, at most 494 in what can be sent */
    char issDat[1999]; /* hexadecimal: the issuer's authentication data and scripts */
    size_t tagsLen;    /* bytes in tags, at most 498 in what can be sent */
    char tags[1999];   /* hexadecimal: tags whose values are to be in the answer */
} AbecsCmdFncData;

/* The card's last word. Texts are hexadecimal digits as received, without leading pairs "30". */
typedef struct AbecsCmdFncResponse {
    uint32_t decision;     /* approved, or declined by the card or the acquirer: the PIN pad's code */
    uint32_t emvDataLen;   /* bytes of EMV data received */
    char emvData[513];     /* the values of the tags */
    uint32_t isResultsLen; /* bytes of results of issuer scripts received */
    char isResults[101];   /* the results themselves */
    uint32_t acqDataLen;   /* bytes of data for the acquirer, which are not read */
} AbecsCmdFncResponse;

/*
 * FNC: after GOC, hands the acquirer's answer to the card and reads its last decision. Returns RSP_STAT; `rspData` is
 * filled only when that is 0. After an error in the answer's fields it holds those before the fault; the length of the
 * one at fault is as it was, and its text is empty or as it was.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'cmdData' is NULL"; "'rspData' is NULL"; "invalid
 * cmdData->issDatLen: %zu (max: 999)"; "invalid cmdData->tagsLen: %zu (max: 999)"; "invalid cmdData->commSt: %d"; then
 * member by member "Number length (%zu) is greater than field length (%zu)" for an `issDatLen` above 494; a character
 * that the field of `arc` does not take, and "Field does not have enough room for data" for a third one; the latter for
 * `issDat` when it is longer than its length says, and "Invalid hex byte at index %zu"; the same of `tagsLen` above 498
 * and of `tags`. PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes, "(%s) Invalid RSP_ID: %s)" for
 * that of another command, notifications included; those of abecs_packet_read_rsp_stat; IO_ERROR for a malformed field;
 * ILLEGAL_ARGUMENT "sizeTo (%zu) is not enough to store field (length: %zu)" for more than 256 bytes of EMV data or 50
 * of results; and what the link raises, a time-out too.
 */
KOR_API int32_t abecs_cmd_fnc(AbecsComm* pinpad, const AbecsCmdFncData* cmdData, AbecsCmdFncResponse* rspData);

KOR_END_DECLS

#endif
