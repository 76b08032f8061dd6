/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_MNU_H
#define QUORVEL_ABECS_CMD_MNU_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * MNU: shows a menu and waits for the choice. `mnuOpts` holds `numOpts` options, 1 to 20, of at most 24 digits and
 * unaccented letters each; blanks are not taken. `dspMsg` is a title of at most 128 characters of which carriage
 * returns break the lines; none and an empty one are left out. `timeout` is in seconds, 0 for the PIN pad's own.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'dspMsg' is too long"; "'mnuOpts' is NULL"; "Invalid numOpts:
 * %zu (min: 1, max: 20)"; "'Invalid menu option at index %zu: %s"; a character of the title that an S field does not
 * take; "Field does not have enough room for data" for an option without a NUL in its 25 bytes. And what the link
 * raises.
 */
KOR_API void abecs_cmd_mnu(AbecsComm* pinpad, uint8_t timeout, const char* dspMsg, const char (*mnuOpts)[25],
                           size_t numOpts);

/*
 * Polls for the answer of MNU. Returns RSP_STAT and unblocks the link, with the number of the chosen option, as the PIN
 * pad counts them, in `optOut` when RSP_STAT is 0; or -1 when nothing has come yet, or three damaged frames have, or -2
 * with the text of a notification in `notification` (33 bytes, or none), the link staying blocked.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL", "'optOut' is NULL"; ILLEGAL_STATE "%s was not sent yet"; PROTOCOL_ERROR "(%s)
 * Invalid RSP_ID: %s)" for the answer of another command, "PP_VALUE not present in response" when the first parameter
 * is not the choice; those of abecs_rsp_parser_set_packet and abecs_rsp_parser_read_param, and of
 * abecs_param_read_field_n, for a malformed answer; and what the link raises. An error leaves the blocked state as it
 * is.
 */
KOR_API int32_t abecs_cmd_mnu_response(AbecsComm* pinpad, uint32_t* optOut, char* notification);

KOR_END_DECLS

#endif
