/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_DSI_H
#define QUORVEL_ABECS_CMD_DSI_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * DSI: shows the media file `filename`, 1 to 8 characters, sent in upper case. Returns RSP_STAT.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'filename' is NULL"; "'filename' is empty"; "'filename' is too
 * long (max: %d, requested: %zu)"; a character that the field does not take. PROTOCOL_ERROR "Unrecognized response" for
 * an answer under six bytes, "(%s) Invalid RSP_ID: %s)" for that of another command; those of
 * abecs_packet_read_rsp_stat for a malformed one; and what the link raises.
 */
KOR_API int32_t abecs_cmd_dsi(AbecsComm* pinpad, const char* filename);

KOR_END_DECLS

#endif
