/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_CLO_H
#define QUORVEL_ABECS_CMD_CLO_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * CLO: closes the session, leaves `msg` on the display (at most 32 characters; none shows blanks) and returns RSP_STAT.
 * The link drops its session key and its PAN working key as soon as the PIN pad has acknowledged the command.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'msg' it too long (maximum: %d, requested: %zu)"; a character
 * that an S field does not take. PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes, "(%s) Invalid
 * RSP_ID: %s)" for that of another command; those of abecs_packet_read_rsp_stat for a malformed one; and what the link
 * raises. After an error in the answer the keys are gone all the same.
 */
KOR_API int32_t abecs_cmd_clo(AbecsComm* pinpad, const char* msg);

KOR_END_DECLS

#endif
