/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_STRING_H
#define QUORVEL_KOR_STRING_H

#include <stdarg.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

KOR_API char* kor_string_format(char* to, size_t size, const char* format, ...);
KOR_API int32_t kor_string_vformat(char* to, size_t size, const char* format, va_list arguments);
KOR_API char* kor_string_copy(char* to, const char* from);
KOR_API char* kor_string_new(const char* text);
KOR_API size_t kor_string_len(const char* text);
KOR_API bool kor_string_is_empty(const char* text);
KOR_API int32_t kor_string_ccmp(const char* lhs, const char* rhs, bool ignoreCase);
KOR_API int32_t kor_string_cmp(const char* lhs, const char* rhs);
KOR_API int32_t kor_string_icmp(const char* lhs, const char* rhs);
KOR_API bool kor_string_cequals(const char* lhs, const char* rhs, bool ignoreCase);
KOR_API bool kor_string_equals(const char* lhs, const char* rhs);
KOR_API bool kor_string_iequals(const char* lhs, const char* rhs);
KOR_API void kor_string_to_lower(char* out, const char* in);
KOR_API void kor_string_to_upper(char* out, const char* in);
KOR_API const char* kor_string_cfind_first(const char* needle, const char* text, bool ignoreCase);
KOR_API const char* kor_string_find_first(const char* needle, const char* text);
KOR_API const char* kor_string_ifind_first(const char* needle, const char* text);
KOR_API const char* kor_string_cfind_last(const char* needle, const char* text, bool ignoreCase);
KOR_API const char* kor_string_find_last(const char* needle, const char* text);
KOR_API const char* kor_string_ifind_last(const char* needle, const char* text);
KOR_API bool kor_string_cstarts_with(const char* prefix, const char* text, bool ignoreCase);
KOR_API bool kor_string_starts_with(const char* prefix, const char* text);
KOR_API bool kor_string_istarts_with(const char* prefix, const char* text);
KOR_API bool kor_string_cends_with(const char* suffix, const char* text, bool ignoreCase);
KOR_API bool kor_string_ends_with(const char* suffix, const char* text);
KOR_API bool kor_string_iends_with(const char* suffix, const char* text);
KOR_API size_t kor_string_creplace_chars(char* text, char from, char to, bool ignoreCase);
KOR_API size_t kor_string_replace_chars(char* text, char from, char to);
KOR_API size_t kor_string_ireplace_chars(char* text, char from, char to);
KOR_API char* kor_string_ltrim(char* to, const char* from, const char* set);
KOR_API char* kor_string_rtrim(char* to, const char* from, const char* set);
KOR_API char* kor_string_trim(char* to, const char* from, const char* set);
KOR_API char* kor_string_random(char* dest, size_t length);

KOR_END_DECLS

#endif
