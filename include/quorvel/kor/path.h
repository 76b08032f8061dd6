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

/*
 * Paths and what the file system says about them. Symbolic links are followed.
 *
 * Failures of the system are IO_ERROR with errno in place of %d.
 */

/*
 * The working directory, written into the `size` bytes at `outBuf`; returns `outBuf`.
 *
 * ILLEGAL_ARGUMENT "'outBuf' is NULL"; IO_ERROR "getcwd() error: %d", 34 when `size` is too small.
 */
KOR_API char* kor_path_cwd(char* outBuf, size_t size);

/* What follows the last slash, as a pointer into `path`: all of it without a slash, "" after a final one. */
KOR_API const char* kor_path_name(const char* path);

/*
 * What follows the first dot of the name: "tar.gz" for "a.tar.gz", "" for a name without a dot. The result points into
 * `path` or is a fixed text.
 *
 * ILLEGAL_ARGUMENT "Path is a dir: %s" for a directory, unless `allowDir`. The path need not exist.
 */
KOR_API const char* kor_path_lextension(const char* path, bool allowDir);

/* kor_path_lextension that refuses directories. */
KOR_API const char* kor_path_extension(const char* path);

/*
 * Whether there is something at the path. IO_ERROR "stat() error: %d" when the system cannot tell, for instance where
 * the way to the path is closed.
 */
KOR_API bool kor_path_exists(const char* path);

/*
 * Whether the path is a directory, or a regular file; its size in bytes; its time of modification in milliseconds
 * since 1970.
 *
 * FILE_NOT_FOUND "File not found: %s"; IO_ERROR "stat() error: %d".
 */
KOR_API bool kor_path_is_dir(const char* path);
KOR_API bool kor_path_is_file(const char* path);
KOR_API uint64_t kor_path_file_size(const char* path);
KOR_API int64_t kor_path_last_modified(const char* path);

/*
 * Replaces what the string list `out` holds by the names in the directory, without "." and "..", in the order in which
 * the directory gives them; returns `out`.
 *
 * ILLEGAL_ARGUMENT "'out' is NULL"; FILE_NOT_FOUND "File not found: %s"; IO_ERROR "stat() error: %d", "Path is not a
 * dir: %s", and "opendir() error: " and "readdir() error: ", both without a number; MALLOC_ERROR.
 */
KOR_API KorList* kor_path_list_entries(const char* path, KorList* out);

KOR_END_DECLS

#endif
