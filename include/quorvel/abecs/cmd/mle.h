/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_MLE_H
#define QUORVEL_ABECS_CMD_MLE_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * MLE: ends the load of a media file; the PIN pad checks what it got against what MLI announced. Returns RSP_STAT.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL"; PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes, "(%s)
 * Invalid RSP_ID: %s)" for that of another command; those of abecs_packet_read_rsp_stat for a malformed one; and what
 * the link raises.
 */
KOR_API int32_t abecs_cmd_mle(AbecsComm* pinpad);

KOR_END_DECLS

#endif
