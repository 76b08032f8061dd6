/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_RSP_PARSER_H
#define QUORVEL_ABECS_RSP_PARSER_H

#include <stdint.h>

#include "quorvel/abecs/packet.h"
#include "quorvel/abecs/param.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Reads a response of parameters: its id and status, then its parameters one after the other, which stand in one or
 * two blocks. A parser is given a packet with abecs_rsp_parser_set_packet and reads from it: the packet must outlive
 * the reading. After a raise the parser must be given a packet anew.
 *
 * Every function but abecs_rsp_parser_delete raises ILLEGAL_ARGUMENT "'parser' is NULL" for a null parser, before
 * anything else.
 */

/* A parser; abecs_rsp_parser_new makes it. */
typedef struct AbecsRspParser AbecsRspParser;

/* A parser with an empty id, status 0 and no packet, the caller's to abecs_rsp_parser_delete. MALLOC_ERROR. */
KOR_API AbecsRspParser* abecs_rsp_parser_new(void);

/* Frees the parser, not its packet, and sets the caller's variable to null; a null address or parser is ignored. */
KOR_API void abecs_rsp_parser_delete(AbecsRspParser** parser);

/*
 * Reads id and status from the packet and checks its blocks.
 *
 * ILLEGAL_ARGUMENT "'responsePacket' is NULL". IO_ERROR: "Invalid packet (not enough data)" below 6 bytes; "Invalid
 * packet (malformed)" for a block longer than the packet; "Invalid packet (unsupported block)" for bytes after the
 * second block; the codec's for a bad id or block length. PROTOCOL_ERROR: "Unknown value for RSP_STAT: %03d"; for a
 * notification ("NTM") "Malformed notification" with more than 32 characters or a second block, "NTM with invalid
 * RSP_STAT: %s" with the status's name for a status other than 0. Behind a status other than 0 nothing is looked at.
 */
KOR_API void abecs_rsp_parser_set_packet(AbecsRspParser* parser, AbecsPacket* responsePacket);

/* The response's id: three characters, less trailing blanks; valid until the parser is changed or deleted. */
KOR_API const char* abecs_rsp_parser_get_id(const AbecsRspParser* parser);

/* The response's status, ABECS_RSP_STAT_ST_NOTIFICATION for a notification. */
KOR_API int32_t abecs_rsp_parser_get_stat(const AbecsRspParser* parser);

/*
 * Reads the next parameter into `out` and returns `out`, or null when none is left. ILLEGAL_ARGUMENT "'out' is NULL";
 * IO_ERROR "Malformed packet (remaining bytes on BLK1 cannot be used)", or BLK2, when a block ends with 1 to 3 bytes
 * or within a parameter; the errors of abecs_packet_read_param.
 */
KOR_API AbecsParam* abecs_rsp_parser_read_param(AbecsRspParser* parser, AbecsParam* out);

/*
 * Reads a notification's text into `text`, which has room for 33 bytes (or is null to skip it); returns `text`.
 * ILLEGAL_STATE "Response is not a notification"; further those of abecs_packet_read_field_s.
 */
KOR_API char* abecs_rsp_parser_read_notification(AbecsRspParser* parser, char* text);

KOR_END_DECLS

#endif
