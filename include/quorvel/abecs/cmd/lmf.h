/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_LMF_H
#define QUORVEL_ABECS_CMD_LMF_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"
#include "quorvel/kor/list.h"

KOR_BEGIN_DECLS

/*
 * LMF: replaces what the string list `out` (string_list.h) holds by the names of the PIN pad's media files, without
 * trailing blanks, in the order of the answer. Returns RSP_STAT; when that is not 0, `out` is empty. After an error in
 * the answer it holds the names that came before the fault, after one of the link none, and after one of the arguments
 * what it did.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL", "'out' is NULL". PROTOCOL_ERROR "(%s) Invalid RSP_ID: %s)" for the answer of
 * another command, "Unrecognized RSP_DATID: %hu" for a parameter that is no name; those of abecs_rsp_parser_set_packet
 * and abecs_rsp_parser_read_param, and of abecs_param_read_field_a, for a malformed one; and what the link raises.
 */
KOR_API int32_t abecs_cmd_lmf(AbecsComm* pinpad, KorList* out);

KOR_END_DECLS

#endif
