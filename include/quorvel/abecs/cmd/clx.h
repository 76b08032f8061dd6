/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_CLX_H
#define QUORVEL_ABECS_CMD_CLX_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * CLX: closes the session as CLO does, leaving `dspMsg` (at most 128 characters, carriage returns break lines) or the
 * media file `mfName` (at most 8 characters, sent in upper case) on the display. Each may be none or empty. Returns
 * RSP_STAT.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'dspMsg' length (%zu)  is greater than 128 characters";
 * "'mfName' length (%zu) is greater than 8 characters"; a character that the fields do not take. PROTOCOL_ERROR "(%s)
 * Invalid RSP_ID: %s)" for the answer of another command; those of abecs_rsp_parser_set_packet for a malformed one; and
 * what the link raises. After an error in the answer the keys are gone all the same.
 */
KOR_API int32_t abecs_cmd_clx(AbecsComm* pinpad, const char* dspMsg, const char* mfName);

KOR_END_DECLS

#endif
