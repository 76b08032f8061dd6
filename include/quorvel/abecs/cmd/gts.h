/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GTS_H
#define QUORVEL_ABECS_CMD_GTS_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * GTS: reads the version of the tables for acquirer index `acqIdx`, 0 to 99, into `out`, which has room for 11 bytes:
 * at most 10 characters, without trailing blanks, and a NUL. Returns RSP_STAT; when that is not 0, `out` is empty.
 *
 * In this order: INDEX_OUT_OF_BOUNDS "Invalid acqIdx: %d (maximum is 99)"; ILLEGAL_ARGUMENT "'out' is NULL", "'pinpad'
 * is NULL". PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes, "Invalid RSP_ID (expected %s, read:
 * %s)" for that of another command, "Invalid RSP_LEN1 (expected: 10, read: %u)"; those of abecs_packet_read_rsp_stat;
 * IO_ERROR for a malformed field; and what the link raises. After an error in the version itself `out` is empty or
 * holds what was received, after any other it is as it was.
 */
KOR_API int32_t abecs_cmd_gts(AbecsComm* pinpad, uint8_t acqIdx, char* out);

KOR_END_DECLS

#endif
