/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GKY_H
#define QUORVEL_ABECS_CMD_GKY_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * GKY: waits for a function key, CLEAR, CANCEL or ENTER. ILLEGAL_ARGUMENT "'pinpad' is NULL"; and what the link raises.
 */
KOR_API void abecs_cmd_gky(AbecsComm* pinpad);

/*
 * Polls for the answer of GKY. Returns RSP_STAT, which tells the key (ABECS_RSP_STAT_ST_OK for ENTER, otherwise
 * ABECS_RSP_STAT_ST_F1 to _F4, _BACKSP for CLEAR, _CANCEL), and unblocks the link; or -1 when nothing has come yet, or
 * three damaged frames have, or -2 with the text of a notification in `notification` (33 bytes, or none), the link
 * staying blocked.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL"; ILLEGAL_STATE "%s was not sent yet"; PROTOCOL_ERROR "Unrecognized response" for
 * an answer under six bytes, "(%s) Invalid RSP_ID: %s)" for that of another command; those of
 * abecs_packet_read_rsp_stat and abecs_packet_read_notification for a malformed one; and what the link raises. An error
 * leaves the blocked state as it is.
 */
KOR_API int32_t abecs_cmd_gky_response(AbecsComm* pinpad, char* notification);

KOR_END_DECLS

#endif
