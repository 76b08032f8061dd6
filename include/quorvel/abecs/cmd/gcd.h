/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GCD_H
#define QUORVEL_ABECS_CMD_GCD_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * GCD: has a number of `minDig` to `maxDig` digits, at most 32, typed in. The prompt is the PIN pad's own with index
 * `msgIdx`. `timeout` is in seconds, 0 for the PIN pad's own.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "Invalid value for minDig: %d (max: 32)"; "Invalid value for
 * maxDig: %d (max: 32)"; "minDig (%d) > maxDig (%d)". And what the link raises.
 */
KOR_API void abecs_cmd_gcd(AbecsComm* pinpad, uint16_t msgIdx, uint8_t minDig, uint8_t maxDig, uint8_t timeout);

/*
 * Polls for the answer of GCD. Returns RSP_STAT and unblocks the link, with the number as a text in `out` when RSP_STAT
 * is 0; or -1 when nothing has come yet, or three damaged frames have, or -2 with the text of a notification in
 * `notification` (33 bytes, or none), the link staying blocked.
 *
 * Give `out` room for 996 bytes: so many, with the NUL, are written when the PIN pad sends that much, and nothing stops
 * it. A number that keeps to `maxDig` fills 33 of them at most.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL", "'out' is NULL"; ILLEGAL_STATE "%s was not sent yet"; PROTOCOL_ERROR "(%s)
 * Invalid RSP_ID: %s)" for the answer of another command, "PP_VALUE not found on response" when the number is missing;
 * those of abecs_rsp_parser_set_packet and abecs_rsp_parser_read_param for a malformed answer; and what the link
 * raises. An error leaves the blocked state as it is.
 */
KOR_API int32_t abecs_cmd_gcd_response(AbecsComm* pinpad, char* out, char* notification);

KOR_END_DECLS

#endif
