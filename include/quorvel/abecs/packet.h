/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_PACKET_H
#define QUORVEL_ABECS_PACKET_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/abecs/param.h"
#include "quorvel/kor/buffer.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef struct AbecsPacket AbecsPacket;

KOR_API AbecsPacket* abecs_packet_new(void);
KOR_API void abecs_packet_delete(AbecsPacket** packet);
KOR_API void abecs_packet_clear(AbecsPacket* packet);
KOR_API size_t abecs_packet_available_read(const AbecsPacket* packet);
KOR_API void abecs_packet_write_byte(AbecsPacket* packet, uint8_t byte);
KOR_API uint8_t abecs_packet_read_byte(AbecsPacket* packet);
KOR_API void abecs_packet_write_field_n(AbecsPacket* packet, uint64_t i, size_t fieldLen);
KOR_API uint64_t abecs_packet_read_field_n(AbecsPacket* packet, size_t fieldLen);
KOR_API void abecs_packet_write_field_a(AbecsPacket* packet, const char* data, size_t fieldLen, bool allowCr);
KOR_API void abecs_packet_write_field_a_cdata(AbecsPacket* packet, const char* data, size_t dataLen, size_t fieldLen,
                                              bool allowCr);
KOR_API char* abecs_packet_read_field_a(AbecsPacket* packet, char* to, size_t sizeTo, size_t fieldLen, bool allowCr);
KOR_API void abecs_packet_write_field_s(AbecsPacket* packet, const char* data, size_t fieldLen, bool allowCr);
KOR_API void abecs_packet_write_field_s_cdata(AbecsPacket* packet, const char* data, size_t dataLen, size_t fieldLen,
                                              bool allowCr);
KOR_API char* abecs_packet_read_field_s(AbecsPacket* packet, char* to, size_t sizeTo, size_t fieldLen, bool allowCr);
KOR_API void abecs_packet_write_field_h(AbecsPacket* packet, const char* data, size_t fieldLen);
KOR_API void abecs_packet_write_field_h_cdata(AbecsPacket* packet, const char* data, size_t dataLen, size_t fieldLen);
KOR_API char* abecs_packet_read_field_h(AbecsPacket* packet, char* to, size_t sizeTo, size_t fieldLen);
KOR_API void abecs_packet_write_field_h_raw(AbecsPacket* packet, const uint8_t* data, size_t dataLen, size_t fieldLen);
KOR_API size_t abecs_packet_read_field_h_raw(AbecsPacket* packet, uint8_t* to, size_t sizeTo, size_t fieldLen);
KOR_API void abecs_packet_write_field_x(AbecsPacket* packet, uint32_t data, size_t fieldLen);
KOR_API uint32_t abecs_packet_read_field_x(AbecsPacket* packet, size_t fieldLen);
KOR_API void abecs_packet_write_field_b(AbecsPacket* packet, const void* data, size_t dataLen);
KOR_API size_t abecs_packet_read_field_b(AbecsPacket* packet, void* to, size_t sizeTo, size_t dataLen);
KOR_API int32_t abecs_packet_read_rsp_stat(AbecsPacket* packet);
KOR_API void abecs_packet_write_param(AbecsPacket* packet, AbecsParam* param);
KOR_API AbecsParam* abecs_packet_read_param(AbecsPacket* packet, AbecsParam* out);
KOR_API char* abecs_packet_read_notification(AbecsPacket* packet, char* text);
KOR_API KorBufferState* abecs_packet_save_state(const AbecsPacket* packet, KorBufferState* out);
KOR_API void abecs_packet_set_state(AbecsPacket* packet, const KorBufferState* state);

KOR_END_DECLS

#endif
