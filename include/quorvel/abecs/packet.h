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

/*
 * A packet: one whole command or response, the bytes between a frame's SYN and ETB without stuffing, at most 2044.
 * What is written beyond that raises the byte buffer's IO_ERROR "No enough space in buffer (available: %zu, requested:
 * %zu)".
 *
 * The field functions do what the abecs_data_ function of the same name does (quorvel/abecs/data.h: shapes, texts and
 * order of the checks), on the packet's bytes: writing appends, reading consumes. `byte` is one byte as it is; to read
 * one that is not there raises the byte buffer's IO_ERROR "No enough space in buffer (available: %d, requested: %d)".
 *
 * Every function but abecs_packet_delete raises ILLEGAL_ARGUMENT "'packet' is NULL" for a null packet, before anything
 * else.
 */

/* A packet; abecs_packet_new makes it. */
typedef struct AbecsPacket AbecsPacket;

/* An empty packet, the caller's to abecs_packet_delete. MALLOC_ERROR. */
KOR_API AbecsPacket* abecs_packet_new(void);

/* Frees the packet and sets the caller's variable to null; a null address or packet is ignored. Never raises. */
KOR_API void abecs_packet_delete(AbecsPacket** packet);

/* Empties the packet. */
KOR_API void abecs_packet_clear(AbecsPacket* packet);

/* The number of bytes not read yet. */
KOR_API size_t abecs_packet_available_read(const AbecsPacket* packet);

/* Write or read a field, or a single byte, as the abecs_data_ function that has the rest of the name. */
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

/* As abecs_data_read_rsp_stat. */
KOR_API int32_t abecs_packet_read_rsp_stat(AbecsPacket* packet);

/*
 * Appends a parameter: its id and the length of its unread data as X fields of 2, then those data, which are consumed.
 * ILLEGAL_ARGUMENT "'param' is NULL". When the packet has no room for the data, they stay in the parameter; its id and
 * their length may have been appended.
 */
KOR_API void abecs_packet_write_param(AbecsPacket* packet, AbecsParam* param);

/*
 * Reads a parameter into `out`, whose former data are dropped, and returns `out`. ILLEGAL_ARGUMENT "'out' is NULL";
 * PROTOCOL_ERROR "Malformed parameter (expected data length: %hu, available: %hu)", id and length being consumed; the
 * byte buffer's IO_ERROR for data of more than 999 bytes; those of abecs_packet_read_field_x for less than id and
 * length.
 */
KOR_API AbecsParam* abecs_packet_read_param(AbecsPacket* packet, AbecsParam* out);

/*
 * Reads what follows the id of a notification: its status, its length and its text, into `text`, which has room for 33
 * bytes (or is null to skip it); returns `text`. PROTOCOL_ERROR "NTM with invalid RSP_STAT: %s" with the status's name
 * for a status other than 0; ILLEGAL_ARGUMENT "sizeTo (33) is not enough to store field data" for more than 32
 * characters; further those of abecs_packet_read_rsp_stat, abecs_packet_read_field_n and abecs_packet_read_field_s.
 */
KOR_API char* abecs_packet_read_notification(AbecsPacket* packet, char* text);

/*
 * Stores the packet's read and write positions in `out` and returns `out`, so that what is read afterwards can be read
 * again. ILLEGAL_ARGUMENT "'out' is NULL".
 */
KOR_API KorBufferState* abecs_packet_save_state(const AbecsPacket* packet, KorBufferState* out);

/*
 * Goes back to saved positions; the bytes themselves must not have been overwritten. ILLEGAL_ARGUMENT "'state' is
 * NULL".
 */
KOR_API void abecs_packet_set_state(AbecsPacket* packet, const KorBufferState* state);

KOR_END_DECLS

#endif
