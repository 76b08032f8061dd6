/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_MLR_H
#define QUORVEL_ABECS_CMD_MLR_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * MLR: sends the next `szData` bytes, 1 to 995, of the file that MLI announced. Returns RSP_STAT.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'data' is NULL"; "'szData' is too big (max: %d, req: %zu)";
 * "'szData' is zero". PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes, "(%s) Invalid RSP_ID: %s)"
 * for that of another command; those of abecs_packet_read_rsp_stat for a malformed one; and what the link raises.
 */
KOR_API int32_t abecs_cmd_mlr(AbecsComm* pinpad, const uint8_t* data, size_t szData);

KOR_END_DECLS

#endif
