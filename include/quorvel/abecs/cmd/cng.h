/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_CNG_H
#define QUORVEL_ABECS_CMD_CNG_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * CNG: has the PIN pad change EMV data of the transaction. `emvDat` is at most 198 hexadecimal digits, sent in upper
 * case; an odd last one is sent as it is, though it is not counted. Returns RSP_STAT.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'emvDat' is NULL"; "'emvDat' length is greater than 198
 * characters"; "Invalid hex byte at index %zu". PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes,
 * "(%s) Invalid RSP_ID: %s)" for that of another command; IO_ERROR for a malformed one; and what the link raises.
 */
KOR_API int32_t abecs_cmd_cng(AbecsComm* pinpad, const char* emvDat);

KOR_END_DECLS

#endif
