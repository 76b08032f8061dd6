/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_DATA_H
#define QUORVEL_ABECS_DATA_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/buffer.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef struct AbecsDate {
    uint8_t year;
    uint8_t month;
    uint8_t day;
} AbecsDate;

typedef struct AbecsTime {
    uint8_t hours;
    uint8_t minutes;
    uint8_t seconds;
} AbecsTime;

KOR_API void abecs_data_write_field_n(KorBuffer* buffer, uint64_t i, size_t fieldLen);
KOR_API uint64_t abecs_data_read_field_n(KorBuffer* buffer, size_t fieldLen);
KOR_API int32_t abecs_data_read_rsp_stat(KorBuffer* buffer);
KOR_API void abecs_data_write_field_a(KorBuffer* buffer, const char* data, size_t fieldLen, bool allowCr);
KOR_API void abecs_data_write_field_a_cdata(KorBuffer* buffer, const char* data, size_t dataLen, size_t fieldLen,
                                            bool allowCr);
KOR_API char* abecs_data_read_field_a(KorBuffer* buffer, char* to, size_t sizeTo, size_t fieldLen, bool allowCr);
KOR_API void abecs_data_write_field_s(KorBuffer* buffer, const char* data, size_t fieldLen, bool allowCr);
KOR_API void abecs_data_write_field_s_cdata(KorBuffer* buffer, const char* data, size_t dataLen, size_t fieldLen,
                                            bool allowCr);
KOR_API char* abecs_data_read_field_s(KorBuffer* buffer, char* to, size_t sizeTo, size_t fieldLen, bool allowCr);
KOR_API void abecs_data_write_field_h(KorBuffer* buffer, const char* data, size_t fieldLen);
KOR_API void abecs_data_write_field_h_cdata(KorBuffer* buffer, const char* data, size_t dataLen, size_t fieldLen);
KOR_API char* abecs_data_read_field_h(KorBuffer* buffer, char* to, size_t sizeTo, size_t fieldLen);
KOR_API void abecs_data_write_field_h_raw(KorBuffer* buffer, const uint8_t* data, size_t dataLen, size_t fieldLen);
KOR_API size_t abecs_data_read_field_h_raw(KorBuffer* buffer, uint8_t* to, size_t sizeTo, size_t fieldLen);
KOR_API void abecs_data_write_field_x(KorBuffer* buffer, uint32_t data, size_t fieldLen);
KOR_API uint32_t abecs_data_read_field_x(KorBuffer* buffer, size_t fieldLen);
KOR_API void abecs_data_write_field_b(KorBuffer* buffer, const void* data, size_t dataLen);
KOR_API size_t abecs_data_read_field_b(KorBuffer* buffer, void* to, size_t sizeTo, size_t dataLen);
KOR_API void abecs_data_check_n_string(const char* text, const char* argName, size_t maxLen, size_t minLen);
KOR_API bool abecs_data_is_numeric_field(const char* text, size_t length, size_t* outIndex);
KOR_API bool abecs_data_is_alphanumeric(char c);
KOR_API bool abecs_data_is_alphanumeric_field(const char* text, size_t length, size_t* outIndex);
KOR_API void abecs_data_validate_date(const AbecsDate* date);
KOR_API void abecs_data_validate_time(const AbecsTime* time);
KOR_API char* abecs_data_to_hex(const uint8_t* data, size_t szData, char* to, size_t sizeTo);
KOR_API uint8_t* abecs_data_from_hex(const char* hex, uint8_t* out, size_t sizeOut);
KOR_API uint8_t* abecs_data_from_hex2(const char* hex, size_t szHex, uint8_t* out, size_t sizeOut);

KOR_END_DECLS

#endif
