/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_PARAM_H
#define QUORVEL_ABECS_PARAM_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef struct AbecsParam AbecsParam;

KOR_API AbecsParam* abecs_param_new(void);
KOR_API void abecs_param_delete(AbecsParam** param);
KOR_API void abecs_param_clear_data(AbecsParam* param);
KOR_API void abecs_param_reset(AbecsParam* param);
KOR_API uint16_t abecs_param_get_id(const AbecsParam* param);
KOR_API void abecs_param_set_id(AbecsParam* param, uint16_t id);
KOR_API size_t abecs_param_available_read(const AbecsParam* param);
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
