/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_RMC_H
#define QUORVEL_ABECS_CMD_RMC_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * RMC: shows `msg`, at most 32 characters or none for a blank display, and waits until the card has been removed.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'msg' it too long (maximum: %d, requested: %zu)"; a character
 * that an S field does not take. And what the link raises.
 */
KOR_API void abecs_cmd_rmc(AbecsComm* pinpad, const char* msg);

/*
 * Polls for the answer of RMC. Returns RSP_STAT and unblocks the link; or -1 when nothing has come yet, or three
 * damaged frames have, or -2 with the text of a notification in `notification` (33 bytes, or none), the link staying
 * blocked.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL"; ILLEGAL_STATE "%s was not sent yet"; PROTOCOL_ERROR "Unrecognized response" for
 * an answer under six bytes, "(%s) Invalid RSP_ID: %s)" for that of another command; those of
 * abecs_packet_read_rsp_stat and abecs_packet_read_notification for a malformed one; and what the link raises. An error
 * leaves the blocked state as it is.
 */
KOR_API int32_t abecs_cmd_rmc_response(AbecsComm* pinpad, char* notification);

KOR_END_DECLS

#endif
