/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_PATH_H
#define QUORVEL_KOR_PATH_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"
#include "quorvel/kor/list.h"

KOR_BEGIN_DECLS

KOR_API char* kor_path_cwd(char* outBuf, size_t size);
KOR_API const char* kor_path_name(const char* path);
KOR_API const char* kor_path_lextension(const char* path, bool allowDir);
KOR_API const char* kor_path_extension(const char* path);
KOR_API bool kor_path_exists(const char* path);
KOR_API bool kor_path_is_dir(const char* path);
KOR_API bool kor_path_is_file(const char* path);
KOR_API uint64_t kor_path_file_size(const char* path);
KOR_API int64_t kor_path_last_modified(const char* path);
KOR_API KorList* kor_path_list_entries(const char* path, KorList* out);

KOR_END_DECLS

#endif
