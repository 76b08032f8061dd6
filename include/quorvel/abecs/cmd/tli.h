/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_TLI_H
#define QUORVEL_ABECS_CMD_TLI_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Loading tables: TLI announces the new version for an acquirer, TLR sends the records, as many batches as it takes,
 * and TLE ends the load. The order is the caller's to keep; what the PIN pad makes of another one is in its status.
 */

/*
 * TLI: opens a load for acquirer index `acqIdx`, 0 to 99, whose tables will have the version `tabVer`, at most 10
 * characters. Returns RSP_STAT.
 *
 * In this order: ILLEGAL_ARGUMENT "'pinpad' is NULL"; INDEX_OUT_OF_BOUNDS "Invalid 'acqIdx': %d (maximum is 99)";
 * ILLEGAL_ARGUMENT "'tabVer' is NULL", "Invalid 'tabVer' length: %d (max: 10)", or a character that the field does not
 * take. PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes, "Invalid RSP_ID (expected %s, read: %s)"
 * for that of another command; those of abecs_packet_read_rsp_stat for a malformed one; and what the link raises.
 */
KOR_API int32_t abecs_cmd_tli(AbecsComm* pinpad, uint8_t acqIdx, const char* tabVer);

KOR_END_DECLS

#endif
