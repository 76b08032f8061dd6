/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_REGEX_H
#define QUORVEL_KOR_REGEX_H

#include <stdbool.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * POSIX extended regular expressions over NUL-terminated texts.
 */

/* A compiled expression; kor_regex_new makes it. */
typedef struct KorRegex KorRegex;

/*
 * Compiles `pattern`. Delete the result with kor_regex_delete.
 *
 * ILLEGAL_ARGUMENT "Invalid regular expression", for a pattern of none as well; MALLOC_ERROR.
 */
KOR_API KorRegex* kor_regex_new(const char* pattern);

/* Frees the expression and sets the caller's variable to none. */
KOR_API void kor_regex_delete(KorRegex** regex);

/*
 * Whether the expression matches anywhere in `text`: anchor it with ^ and $ to match the whole.
 *
 * ILLEGAL_ARGUMENT "'text' is NULL", "'regex' is NULL"; RUNTIME_ERROR "regexec() error: %d" with what regexec()
 * returned, when it gave up.
 */
KOR_API bool kor_regex_match(const char* text, const KorRegex* regex);

/* Compiles `pattern` for one match. The errors are those of kor_regex_new and kor_regex_match. */
KOR_API bool kor_regex_smatch(const char* text, const char* pattern);

KOR_END_DECLS

#endif
