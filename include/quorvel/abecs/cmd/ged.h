/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GED_H
#define QUORVEL_ABECS_CMD_GED_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/emv_data.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * GED: reads the values of the EMV tags of `tagList` from the card in process into `out`. Returns RSP_STAT; `out` is
 * filled only when that is 0, and as it was after an error.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'tagList' is NULL"; "'tagList->szData' is too long (max: %d,
 * requested: %zu)" above 128; "'out' is NULL". PROTOCOL_ERROR "(%s) Invalid RSP_ID: %s)" for the answer of another
 * command, "Malformed PP_EMVDATA" for more than 512 bytes, "Missing required parameter in response: PP_EMVDATA"; those
 * of abecs_rsp_parser_set_packet and abecs_rsp_parser_read_param; and what the link raises.
 */
KOR_API int32_t abecs_cmd_ged(AbecsComm* pinpad, const AbecsTagList* tagList, AbecsEmvData* out);

KOR_END_DECLS

#endif
