/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_PARAM_H
#define QUORVEL_ABECS_PARAM_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * A parameter: a 16-bit id and at most 999 bytes of data, made of fields; what is written beyond that raises the byte
 * buffer's IO_ERROR "No enough space in buffer (available: %zu, requested: %zu)". Commands are given parameters, the
 * AbecsSpeId_E ids; responses return others, the AbecsRspDatId_E ids.
 *
 * The field functions do what the abecs_data_ function of the same name does (quorvel/abecs/data.h: shapes, texts and
 * order of the checks), on the parameter's bytes: writing appends, reading consumes. `byte` is one byte as it is; to
 * read one that is not there raises the byte buffer's IO_ERROR "No enough space in buffer (available: %d, requested:
 * %d)".
 *
 * Every function but abecs_param_delete raises ILLEGAL_ARGUMENT "'param' is NULL" for a null parameter, before
 * anything else.
 */

/* A parameter; abecs_param_new makes it. */
typedef struct AbecsParam AbecsParam;

/* A parameter with id 0 and no data, the caller's to abecs_param_delete. MALLOC_ERROR. */
KOR_API AbecsParam* abecs_param_new(void);

/* Frees the parameter and sets the caller's variable to null; a null address or parameter is ignored. Never raises. */
KOR_API void abecs_param_delete(AbecsParam** param);

/* Drops the data and keeps the id. */
KOR_API void abecs_param_clear_data(AbecsParam* param);

/* Drops the data and sets the id to 0. */
KOR_API void abecs_param_reset(AbecsParam* param);

/* The id. */
KOR_API uint16_t abecs_param_get_id(const AbecsParam* param);
KOR_API void abecs_param_set_id(AbecsParam* param, uint16_t id);

/* The number of data bytes not read yet. */
KOR_API size_t abecs_param_available_read(const AbecsParam* param);

/* Write or read a field, or a single byte, as the abecs_data_ function that has the rest of the name. */
KOR_API void abecs_param_write_byte(AbecsParam* param, uint8_t byte);
KOR_API uint8_t abecs_param_read_byte(AbecsParam* param);
KOR_API void abecs_param_write_field_n(AbecsParam* param, uint64_t i, size_t fieldLen);
KOR_API uint64_t abecs_param_read_field_n(AbecsParam* param, size_t fieldLen);
KOR_API void abecs_param_write_field_a(AbecsParam* param, const char* data, size_t fieldLen, bool allowCr);
KOR_API void abecs_param_write_field_a_cdata(AbecsParam* param, const char* data, size_t dataLen, size_t fieldLen,
                                             bool allowCr);
KOR_API char* abecs_param_read_field_a(AbecsParam* param, char* to, size_t sizeTo, size_t fieldLen, bool allowCr);
KOR_API void abecs_param_write_field_s(AbecsParam* param, const char* data, size_t fieldLen, bool allowCr);
KOR_API void abecs_param_write_field_s_cdata(AbecsParam* param, const char* data, size_t dataLen, size_t fieldLen,
                                             bool allowCr);
KOR_API char* abecs_param_read_field_s(AbecsParam* param, char* to, size_t sizeTo, size_t fieldLen, bool allowCr);
KOR_API void abecs_param_write_field_h(AbecsParam* param, const char* data, size_t fieldLen);
KOR_API char* abecs_param_read_field_h(AbecsParam* param, char* to, size_t sizeTo, size_t fieldLen);
KOR_API void abecs_param_write_field_h_raw(AbecsParam* param, const uint8_t* data, size_t dataLen, size_t fieldLen);
KOR_API size_t abecs_param_read_field_h_raw(AbecsParam* param, uint8_t* to, size_t sizeTo, size_t fieldLen);
KOR_API void abecs_param_write_field_x(AbecsParam* param, uint32_t data, size_t fieldLen);
KOR_API uint32_t abecs_param_read_field_x(AbecsParam* param, size_t fieldLen);
KOR_API void abecs_param_write_field_b(AbecsParam* param, const void* data, size_t dataLen);
KOR_API size_t abecs_param_read_field_b(AbecsParam* param, void* to, size_t sizeTo, size_t dataLen);

KOR_END_DECLS

#endif
