/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_TLR_H
#define QUORVEL_ABECS_CMD_TLR_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * TLR: sends one batch of table records in a load that TLI opened. Returns RSP_STAT.
 *
 * `records` is at most 997 characters of up to 99 records, one behind the other. Each starts with its length in three
 * digits, which counts these eight characters too, the table's id in one digit, the acquirer index in two, and the
 * record's index in two characters; table, acquirer and index must not occur twice in a batch. The rest of a record is
 * sent as it stands.
 *
 * ILLEGAL_ARGUMENT, in this order and before anything is sent: "'pinpad' is NULL"; "'records' is NULL"; "'records' is
 * too big (maximum: %d, requested: %d)"; record by record "Invalid record (caused by %s)", a text without the code's
 * name in front, for one that is not as above, and "Duplicate key (TAB_ID: %d, TAB_ACQ: %02d, TAB_RECIDX: %s)"; "Too
 * many records (maximum: %zu, requested: %zu)". PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes,
 * "Invalid RSP_ID (expected %s, read: %s)" for that of another command; those of abecs_packet_read_rsp_stat for a
 * malformed one; and what the link raises.
 */
KOR_API int32_t abecs_cmd_tlr(AbecsComm* pinpad, const char* records);

KOR_END_DECLS

#endif
