/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_MLI_H
#define QUORVEL_ABECS_CMD_MLI_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Loading a media file step by step; mlx.h does it all for a file on disk. MLI announces the file, MLR sends it block
 * by block, and MLE ends the load.
 */

/*
 * MLI: announces a file of `size` bytes whose CRC-16 (crc16.h) is `crc`. `filename`, 1 to 8 characters, is sent in
 * upper case; `type` says what the file is and is sent as it stands. Returns RSP_STAT.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'filename' is NULL"; "'filename' is empty"; "'filename' is too
 * long (max: %d, requested: %zu)"; a character that the field does not take. PROTOCOL_ERROR "Unrecognized response" for
 * an answer under six bytes, "(%s) Invalid RSP_ID: %s)" for that of another command; those of
 * abecs_packet_read_rsp_stat for a malformed one; and what the link raises.
 */
KOR_API int32_t abecs_cmd_mli(AbecsComm* pinpad, const char* filename, uint32_t size, uint16_t crc, uint8_t type);

KOR_END_DECLS

#endif
