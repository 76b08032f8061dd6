/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_DEX_H
#define QUORVEL_ABECS_CMD_DEX_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * DEX: shows `msg`, at most 160 characters of which carriage returns break the lines, on the display and returns
 * RSP_STAT.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'msg' is NULL"; "'msg' it too long (maximum: %d, requested:
 * %zu)"; a character that an S field does not take. PROTOCOL_ERROR "Unrecognized response" for an answer under six
 * bytes, "(%s) Invalid RSP_ID: %s)" for that of another command; those of abecs_packet_read_rsp_stat for a malformed
 * one; and what the link raises.
 */
KOR_API int32_t abecs_cmd_dex(AbecsComm* pinpad, const char* msg);

KOR_END_DECLS

#endif
