/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_FILE_H
#define QUORVEL_KOR_FILE_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef struct KorFile KorFile;

typedef enum KorFileOrigin_E KOR_ENUM_INT32 {
    KOR_FILE_ORIGIN_START = 0,
    KOR_FILE_ORIGIN_CURRENT = 1,
    KOR_FILE_ORIGIN_END = 2
} KorFileOrigin_E;

KOR_API KorFile* kor_file_open(const char* path, const char* mode);
KOR_API void kor_file_close(KorFile** file);
KOR_API size_t kor_file_read(KorFile* file, void* buffer, size_t size, bool* atEnd);
KOR_API void kor_file_write(KorFile* file, const void* bytes, size_t size);
KOR_API void kor_file_flush(KorFile* file);
KOR_API void kor_file_seek(KorFile* file, int64_t offset, int32_t origin);

KOR_END_DECLS

#endif
