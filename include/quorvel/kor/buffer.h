/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_BUFFER_H
#define QUORVEL_KOR_BUFFER_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef struct KorBuffer KorBuffer;

typedef struct KorBufferState {
    uint32_t writeCursor;
    uint32_t readCursor;
    bool lastRead;
} KorBufferState;

KOR_API KorBuffer* kor_buffer_new(uint32_t capacity);
KOR_API void kor_buffer_delete(KorBuffer** buffer);
KOR_API void kor_buffer_set_storage(KorBuffer* buffer, void* storage, uint32_t sizeStorage, bool full);
KOR_API uint8_t* kor_buffer_get_storage(const KorBuffer* buffer);
KOR_API uint32_t kor_buffer_capacity(const KorBuffer* buffer);
KOR_API size_t kor_buffer_clear(KorBuffer* buffer);
KOR_API size_t kor_buffer_available_read(const KorBuffer* buffer);
KOR_API size_t kor_buffer_available_write(const KorBuffer* buffer);
KOR_API uint32_t kor_buffer_get_read_cursor_pos(const KorBuffer* buffer);
KOR_API void kor_buffer_set_read_cursor_pos(KorBuffer* buffer, uint32_t pos);
KOR_API uint32_t kor_buffer_get_write_cursor_pos(const KorBuffer* buffer);
KOR_API void kor_buffer_set_write_cursor_pos(KorBuffer* buffer, uint32_t pos);
KOR_API bool kor_buffer_is_last_read(const KorBuffer* buffer);
KOR_API void kor_buffer_set_last_read(KorBuffer* buffer, bool lastRead);
KOR_API KorBufferState* kor_buffer_save_state(const KorBuffer* buffer, KorBufferState* out);
KOR_API void kor_buffer_set_state(KorBuffer* buffer, const KorBufferState* state);
KOR_API size_t kor_buffer_read(KorBuffer* buffer, void* destination, size_t length);
KOR_API uint8_t kor_buffer_read_byte(KorBuffer* buffer);
KOR_API uint16_t kor_buffer_read_ui16(KorBuffer* buffer, int32_t byteOrder);
KOR_API int16_t kor_buffer_read_i16(KorBuffer* buffer, int32_t byteOrder);
KOR_API uint32_t kor_buffer_read_ui32(KorBuffer* buffer, int32_t byteOrder);
KOR_API int32_t kor_buffer_read_i32(KorBuffer* buffer, int32_t byteOrder);
KOR_API char* kor_buffer_read_str(KorBuffer* buffer, char* destination, size_t size);
KOR_API void kor_buffer_write(KorBuffer* buffer, const void* bytes, size_t length);
KOR_API void kor_buffer_write_byte(KorBuffer* buffer, uint8_t byte);
KOR_API void kor_buffer_write_ui16(KorBuffer* buffer, uint16_t value, int32_t byteOrder);
KOR_API void kor_buffer_write_i16(KorBuffer* buffer, int16_t value, int32_t byteOrder);
KOR_API void kor_buffer_write_ui32(KorBuffer* buffer, uint32_t value, int32_t byteOrder);
KOR_API void kor_buffer_write_i32(KorBuffer* buffer, int32_t value, int32_t byteOrder);
KOR_API void kor_buffer_write_str(KorBuffer* buffer, const char* text, bool withTerminator);

KOR_END_DECLS

#endif
