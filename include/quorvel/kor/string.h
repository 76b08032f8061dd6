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

/*
 * Texts: NUL-terminated bytes.
 *
 * 1. Most operations come in three forms: `c` takes `ignoreCase` last, the plain one compares case, `i` ignores it.
 *    Case is that of the letters A to Z, byte by byte, whatever the locale.
 * 2. The text sought comes first, the text searched second.
 * 3. Destinations are the caller's and must be large enough; only the arguments named below are checked for none, and
 *    the others must not be none.
 */

/* Formats at most size - 1 characters and a NUL into `to`; returns `to`. ILLEGAL_ARGUMENT: "'to' is NULL"; "'to' and
 * 'format' points to the same buffer". */
KOR_API KOR_PRINTF(3, 4) char* kor_string_format(char* to, size_t size, const char* format, ...);

/* As kor_string_format; returns the length the whole text would have had. The same errors, the second one first. A
 * `format` of none is an empty one; with size 0 nothing is written. */
KOR_API KOR_PRINTF(3, 0) int32_t kor_string_vformat(char* to, size_t size, const char* format, va_list arguments);

/* Copies a text, unbounded; returns `to`. ILLEGAL_ARGUMENT "'to' is NULL". */
KOR_API char* kor_string_copy(char* to, const char* from);

/* A copy on the heap, the caller's to kor_heap_free; none for none. MALLOC_ERROR. */
KOR_API char* kor_string_new(const char* text);

/* Length in bytes. */
KOR_API size_t kor_string_len(const char* text);

/* Whether the text is none or has no character. */
KOR_API bool kor_string_is_empty(const char* text);

/* Less than, equal to or greater than 0, as strcmp; 0 for the same pointer. */
KOR_API int32_t kor_string_ccmp(const char* lhs, const char* rhs, bool ignoreCase);
KOR_API int32_t kor_string_cmp(const char* lhs, const char* rhs);
KOR_API int32_t kor_string_icmp(const char* lhs, const char* rhs);

/* Whether the texts are the same. */
KOR_API bool kor_string_cequals(const char* lhs, const char* rhs, bool ignoreCase);
KOR_API bool kor_string_equals(const char* lhs, const char* rhs);
KOR_API bool kor_string_iequals(const char* lhs, const char* rhs);

/* Writes the converted text into `out`, which may be `in`. ILLEGAL_ARGUMENT "'out' is NULL". */
KOR_API void kor_string_to_lower(char* out, const char* in);
KOR_API void kor_string_to_upper(char* out, const char* in);

/* Where `needle` occurs first in `text`, or none. */
KOR_API const char* kor_string_cfind_first(const char* needle, const char* text, bool ignoreCase);
KOR_API const char* kor_string_find_first(const char* needle, const char* text);
KOR_API const char* kor_string_ifind_first(const char* needle, const char* text);

/* Where `needle` occurs last in `text`, or none; none also when either is none, and for an empty needle. */
KOR_API const char* kor_string_cfind_last(const char* needle, const char* text, bool ignoreCase);
KOR_API const char* kor_string_find_last(const char* needle, const char* text);
KOR_API const char* kor_string_ifind_last(const char* needle, const char* text);

/* Whether `text` begins with `prefix`. */
KOR_API bool kor_string_cstarts_with(const char* prefix, const char* text, bool ignoreCase);
KOR_API bool kor_string_starts_with(const char* prefix, const char* text);
KOR_API bool kor_string_istarts_with(const char* prefix, const char* text);

/* Whether `text` ends with `suffix`; false for an empty one. */
KOR_API bool kor_string_cends_with(const char* suffix, const char* text, bool ignoreCase);
KOR_API bool kor_string_ends_with(const char* suffix, const char* text);
KOR_API bool kor_string_iends_with(const char* suffix, const char* text);

/* Replaces in place every character equal to `from`; returns how many. 0 for none. */
KOR_API size_t kor_string_creplace_chars(char* text, char from, char to, bool ignoreCase);
KOR_API size_t kor_string_replace_chars(char* text, char from, char to);
KOR_API size_t kor_string_ireplace_chars(char* text, char from, char to);

/* Copies `from` into `to` (which may be `from`) without the leading, trailing or both kinds of characters of `set`;
 * a `set` of none is the blanks: tab, line feed, vertical tab, form feed, carriage return and space. Returns `to`.
 * ILLEGAL_ARGUMENT "'to' is NULL". */
KOR_API char* kor_string_ltrim(char* to, const char* from, const char* set);
KOR_API char* kor_string_rtrim(char* to, const char* from, const char* set);
KOR_API char* kor_string_trim(char* to, const char* from, const char* set);

/* `length` random digits and letters and a NUL, so `dest` holds length + 1 bytes. Not for keys. ILLEGAL_ARGUMENT
 * "'dest' is NULL". */
KOR_API char* kor_string_random(char* dest, size_t length);

KOR_END_DECLS

#endif
