/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_BUFFER_H
#define QUORVEL_KOR_BUFFER_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * The byte buffer: a ring of fixed capacity with a write cursor and a read cursor. What is written is read back in
 * the same order; both cursors wrap at the capacity.
 *
 * 1. Every function raises ILLEGAL_ARGUMENT "buffer is NULL" for a buffer of none, except kor_buffer_delete, which
 *    ignores it, and the functions marked unchecked.
 *
 * 2. A failed call changes nothing, except for kor_buffer_read_str. After an error whose raise returns, the results
 *    are 0 or none.
 *
 * 3. `byteOrder` is 0 for big-endian and anything else for little-endian.
 */

/* A buffer; kor_buffer_new makes it. */
typedef struct KorBuffer KorBuffer;

/*
 * The cursors and the flag of a buffer at some moment. Where the cursors are equal, the buffer is empty if
 * `lastRead` is true and full if it is false.
 */
typedef struct KorBufferState {
    uint32_t writeCursor; /* where the next byte is written */
    uint32_t readCursor;  /* where the next byte is read */
    bool lastRead;        /* whether reading came last */
} KorBufferState;

/*
 * An empty buffer of `capacity` bytes, which may be 0, with storage of its own. Delete it with kor_buffer_delete.
 * MALLOC_ERROR.
 */
KOR_API KorBuffer* kor_buffer_new(uint32_t capacity);

/* Frees the buffer, and its storage unless that was lent, and sets the caller's variable to none. */
KOR_API void kor_buffer_delete(KorBuffer** buffer);

/*
 * Makes the buffer work over the caller's storage of `sizeStorage` bytes, which must outlive that use and is never
 * freed here. What the buffer held is lost. With `full` true all the bytes wait to be read, else the buffer starts
 * empty. None with size 0 leaves the buffer without storage. ILLEGAL_ARGUMENT:
 * "storage is NULL and sizeStorage != 0"; "storage is not NULL but sizeStorage == 0".
 */
KOR_API void kor_buffer_set_storage(KorBuffer* buffer, void* storage, uint32_t sizeStorage, bool full);

/*
 * The first byte of the storage, or none when the capacity is 0. It belongs to the buffer, or to who lent it, and
 * stays valid until the buffer is deleted or gets other storage.
 */
KOR_API uint8_t* kor_buffer_get_storage(const KorBuffer* buffer);

/* The size of the storage in bytes. */
KOR_API uint32_t kor_buffer_capacity(const KorBuffer* buffer);

/* Empties the buffer and moves both cursors to 0; returns how many bytes were waiting. */
KOR_API size_t kor_buffer_clear(KorBuffer* buffer);

/* The number of bytes that wait to be read. */
KOR_API size_t kor_buffer_available_read(const KorBuffer* buffer);

/* The number of bytes that there is room for. */
KOR_API size_t kor_buffer_available_write(const KorBuffer* buffer);

/* The cursors and the flag, unchecked: the buffer must not be none, and a position must be less than the capacity. */
KOR_API uint32_t kor_buffer_get_read_cursor_pos(const KorBuffer* buffer);
KOR_API void kor_buffer_set_read_cursor_pos(KorBuffer* buffer, uint32_t pos);
KOR_API uint32_t kor_buffer_get_write_cursor_pos(const KorBuffer* buffer);
KOR_API void kor_buffer_set_write_cursor_pos(KorBuffer* buffer, uint32_t pos);
KOR_API bool kor_buffer_is_last_read(const KorBuffer* buffer);
KOR_API void kor_buffer_set_last_read(KorBuffer* buffer, bool lastRead);

/* Copies the cursors and the flag into `out` and returns it, to look ahead and come back. Unchecked. */
KOR_API KorBufferState* kor_buffer_save_state(const KorBuffer* buffer, KorBufferState* out);

/*
 * Puts a saved state back. Only the cursors and the flag come back, not bytes that were overwritten since.
 * Unchecked.
 */
KOR_API void kor_buffer_set_state(KorBuffer* buffer, const KorBufferState* state);

/*
 * Moves up to `length` bytes into `destination`, or skips them when that is none; returns how many. Too few waiting
 * bytes are no error.
 */
KOR_API size_t kor_buffer_read(KorBuffer* buffer, void* destination, size_t length);

/*
 * The next 1, 2 or 4 bytes as a number; the signed forms are two's complement. IO_ERROR
 * "No enough space in buffer (available: %d, requested: %d)" when fewer wait, and none is taken.
 */
KOR_API uint8_t kor_buffer_read_byte(KorBuffer* buffer);
KOR_API uint16_t kor_buffer_read_ui16(KorBuffer* buffer, int32_t byteOrder);
KOR_API int16_t kor_buffer_read_i16(KorBuffer* buffer, int32_t byteOrder);
KOR_API uint32_t kor_buffer_read_ui32(KorBuffer* buffer, int32_t byteOrder);
KOR_API int32_t kor_buffer_read_i32(KorBuffer* buffer, int32_t byteOrder);

/*
 * Reads a text up to and with its NUL into `destination` of `size` bytes and returns it. Of a longer text
 * everything is taken from the buffer, but `destination` keeps size - 1 characters and the NUL. IO_ERROR
 * "Null-terminator not found" when no NUL waits: the bytes are taken all the same.
 */
KOR_API char* kor_buffer_read_str(KorBuffer* buffer, char* destination, size_t size);

/*
 * Appends `length` bytes, all or none. IO_ERROR "No enough space in buffer (available: %zu, requested: %zu)" when
 * there is no room for all; writing 0 bytes always succeeds.
 */
KOR_API void kor_buffer_write(KorBuffer* buffer, const void* bytes, size_t length);

/* Append a number of 1, 2 or 4 bytes. Errors as kor_buffer_write. */
KOR_API void kor_buffer_write_byte(KorBuffer* buffer, uint8_t byte);
KOR_API void kor_buffer_write_ui16(KorBuffer* buffer, uint16_t value, int32_t byteOrder);
KOR_API void kor_buffer_write_i16(KorBuffer* buffer, int16_t value, int32_t byteOrder);
KOR_API void kor_buffer_write_ui32(KorBuffer* buffer, uint32_t value, int32_t byteOrder);
KOR_API void kor_buffer_write_i32(KorBuffer* buffer, int32_t value, int32_t byteOrder);

/*
 * Appends the characters of `text`, which must not be none, and its NUL if `withTerminator` is true. Errors as
 * kor_buffer_write, and then nothing of the text is written.
 */
KOR_API void kor_buffer_write_str(KorBuffer* buffer, const char* text, bool withTerminator);

KOR_END_DECLS

#endif
