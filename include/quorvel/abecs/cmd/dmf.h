/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_DMF_H
#define QUORVEL_ABECS_CMD_DMF_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"
#include "quorvel/kor/list.h"

KOR_BEGIN_DECLS

/*
 * DMF: deletes the media files named in the string list `files` (string_list.h), in its order. A name has at most 8
 * characters, which may be none, and is sent in upper case. Returns RSP_STAT.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'files' is NULL"; "At least one file must be supplied"; for
 * each name "'files' has an item that is NULL" or, with the name in double quotes first, "it too long (max: 8,
 * requested: %zu)"; a character that the field does not take. IO_ERROR "No enough space in buffer (available: %zu,
 * requested: %zu)" for more than 166 names, of which none is sent. PROTOCOL_ERROR "Unrecognized response" for an answer
 * under six bytes, "(%s) Invalid RSP_ID: %s)" for that of another command; those of abecs_packet_read_rsp_stat for a
 * malformed one; and what the link raises.
 */
KOR_API int32_t abecs_cmd_dmf(AbecsComm* pinpad, const KorList* files);

KOR_END_DECLS

#endif
