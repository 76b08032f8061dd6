/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_FILE_H
#define QUORVEL_KOR_FILE_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Buffered files of the C library.
 *
 * A file of none raises ILLEGAL_ARGUMENT "'file' is NULL", except where it is closed. Failures of the system are
 * IO_ERROR with errno in place of %d.
 */

/* An open file; kor_file_open makes it. */
typedef struct KorFile KorFile;

/* Where kor_file_seek counts from. */
typedef enum KorFileOrigin_E KOR_ENUM_INT32 {
    KOR_FILE_ORIGIN_START = 0,
    KOR_FILE_ORIGIN_CURRENT = 1,
    KOR_FILE_ORIGIN_END = 2
} KorFileOrigin_E;

/*
 * Opens the file in the C library's `mode` ("rb", "wb", ...). Close it with kor_file_close. A program that a child of
 * the process starts does not have it open, with an "e" in the mode or without.
 *
 * ILLEGAL_ARGUMENT "'path' is NULL"; "'mode' is NULL"; "'to' and 'format' points to the same buffer" when the file
 * cannot be opened, whatever the reason. MALLOC_ERROR.
 */
KOR_API KorFile* kor_file_open(const char* path, const char* mode);

/*
 * Writes out what is buffered, closes the file and sets the caller's variable to none, also when it raises.
 *
 * "fclose() error: %d".
 */
KOR_API void kor_file_close(KorFile** file);

/*
 * Reads up to `size` bytes; returns how many, which are fewer only at the end of the file. `atEnd`, which may be none,
 * tells whether the end was met: asking for exactly the bytes that are left does not meet it, the next read does.
 *
 * "fread() error: %d".
 */
KOR_API size_t kor_file_read(KorFile* file, void* buffer, size_t size, bool* atEnd);

/* Writes `size` bytes, all of them or it raises "fwrite() error: %d". */
KOR_API void kor_file_write(KorFile* file, const void* bytes, size_t size);

/* Hands what is buffered to the system. "fflush() error: %d". */
KOR_API void kor_file_flush(KorFile* file);

/*
 * Moves to `offset` bytes from `origin` (KorFileOrigin_E; every unknown value is the end of the file).
 *
 * "fseek() error: %d".
 */
KOR_API void kor_file_seek(KorFile* file, int64_t offset, int32_t origin);

KOR_END_DECLS

#endif
