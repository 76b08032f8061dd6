/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_CEX_H
#define QUORVEL_ABECS_CMD_CEX_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/pp_event.h"
#include "quorvel/abecs/rsp_param_map.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * CEX: waits for the first of several events. `cexOpt` is the six characters, one for each kind of event, that say
 * which. `timeout` points to seconds, and is sent even when they are 0; `panMask` points to two numbers up to 99: how
 * many leading and how many trailing digits of a card number come in clear. Each of the two may be none and is then
 * left to the PIN pad.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'cexOpt' is not valid!" for none or any other length; a
 * character that an A field does not take; "Number length (%zu) is greater than field length (%zu)" for a mask beyond
 * 99. And what the link raises.
 */
KOR_API void abecs_cmd_cex(AbecsComm* pinpad, const char* cexOpt, const uint8_t* timeout, const uint8_t* panMask);

/*
 * Polls for the answer of CEX. Returns RSP_STAT and unblocks the link; or -1 when nothing has come yet, or three
 * damaged frames have, or -2 with the text of a notification in `notification` (33 bytes, or none), the link staying
 * blocked. When RSP_STAT is 0, `paramMap` holds each item of the answer under its data id (AbecsRspDatId_E), as bytes
 * of its own with a NUL behind them that their size does not count; it is emptied first, and empty after any other
 * outcome but the first three errors.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL", "'out' is NULL" for the map; ILLEGAL_STATE "%s was not sent yet"; PROTOCOL_ERROR
 * "(%s) Invalid RSP_ID: %s)" for the answer of another command; those of abecs_rsp_parser_set_packet and
 * abecs_rsp_parser_read_param for a malformed one; and what the link raises. An error leaves the blocked state as it
 * is.
 */
KOR_API int32_t abecs_cmd_cex_response(AbecsComm* pinpad, AbecsRspParamMap* paramMap, char* notification);

/*
 * What happened, from a map that abecs_cmd_cex_response has filled: PP_EVENT, a text of any length that is taken for a
 * number as strtol() does it, which makes it 0 where there is no digit. ILLEGAL_ARGUMENT "'paramMap' is NULL";
 * PROTOCOL_ERROR "Mandatory PP_EVENT not found", "Invalid code for PP_EVENT: %d". -1, which is no event, where a raise
 * returns.
 */
KOR_API AbecsPpEvent_E abecs_cmd_cex_response_get_event(const AbecsRspParamMap* paramMap);

/*
 * A track of the card, possibly with digits masked, from a map that abecs_cmd_cex_response has filled; none when it is
 * not there. The text belongs to the map. ILLEGAL_ARGUMENT "'paramMap' is NULL".
 */
KOR_API const char* abecs_cmd_cex_response_get_trk1inc(const AbecsRspParamMap* paramMap);
KOR_API const char* abecs_cmd_cex_response_get_trk2inc(const AbecsRspParamMap* paramMap);
KOR_API const char* abecs_cmd_cex_response_get_trk3inc(const AbecsRspParamMap* paramMap);

KOR_END_DECLS

#endif
