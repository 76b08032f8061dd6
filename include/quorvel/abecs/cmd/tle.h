/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_TLE_H
#define QUORVEL_ABECS_CMD_TLE_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * TLE: ends the load that TLI opened; the new tables count from now on. Returns RSP_STAT.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL"; PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes, "Invalid
 * RSP_ID (expected %s, read: %s)" for that of another command; those of abecs_packet_read_rsp_stat for a malformed one;
 * and what the link raises.
 */
KOR_API int32_t abecs_cmd_tle(AbecsComm* pinpad);

KOR_END_DECLS

#endif
