/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_REGEX_H
#define QUORVEL_KOR_REGEX_H

#include <stdbool.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef struct KorRegex KorRegex;

KOR_API KorRegex* kor_regex_new(const char* pattern);
KOR_API void kor_regex_delete(KorRegex** regex);
KOR_API bool kor_regex_match(const char* text, const KorRegex* regex);
KOR_API bool kor_regex_smatch(const char* text, const char* pattern);

KOR_END_DECLS

#endif
