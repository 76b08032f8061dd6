/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_COMM_H
#define QUORVEL_ABECS_COMM_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/abecs/packet.h"
#include "quorvel/abecs/wk_pan.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef struct AbecsComm AbecsComm;

KOR_API AbecsComm* abecs_comm_open(const char* portName);
KOR_API void abecs_comm_close(AbecsComm** pinpad);
KOR_API void abecs_comm_send_can(AbecsComm* pinpad);
KOR_API void abecs_comm_send_packet(AbecsComm* pinpad, AbecsPacket* packet);
KOR_API AbecsPacket* abecs_comm_read_packet(AbecsComm* pinpad, AbecsPacket* out);
KOR_API void abecs_comm_check_busy(const AbecsComm* pinpad);
KOR_API void abecs_comm_lock(AbecsComm* pinpad, const char* cmdId);
KOR_API void abecs_comm_release(AbecsComm* pinpad);
KOR_API const char* abecs_comm_get_blk_wait_id(const AbecsComm* pinpad);
KOR_API char* abecs_comm_get_cmd_id(AbecsPacket* packet, char* out, size_t sizeOut);
KOR_API void abecs_comm_set_send_interval(AbecsComm* pinpad, int64_t interval);
KOR_API int64_t abecs_comm_get_send_interval(const AbecsComm* pinpad);
KOR_API void abecs_comm_set_key(AbecsComm* pinpad, const uint8_t* key);
KOR_API void abecs_comm_set_wk_pan(AbecsComm* pinpad, const AbecsWkPan* wkPan);
KOR_API uint16_t abecs_comm_crc16(AbecsPacket* packet, const uint8_t* prefix, const uint8_t* suffix);

KOR_END_DECLS

#endif
