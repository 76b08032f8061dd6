/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_SYSTEM_H
#define QUORVEL_KOR_SYSTEM_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Clock, random numbers, platform names and environment of the process.
 */

/*
 * The wall clock in milliseconds since 1970. RUNTIME_ERROR "gettimeofday() error: %d" with errno when it cannot be
 * read.
 */
KOR_API int64_t kor_system_current_time_millis(void);

/*
 * A number from `min` to `max`, both included; `min` is at most `max`. The generator is the C library's, seeded from
 * the clock on the first call: good for names and padding, never for keys.
 */
KOR_API int32_t kor_system_random(int32_t min, int32_t max);

/* Fixed texts: always "osx" and "x86". */
KOR_API const char* kor_system_os_name(void);
KOR_API const char* kor_system_os_arch(void);

/*
 * The value of the environment variable `name`, or none. The text is the environment's own: it is not to be freed, and
 * lives until the variable changes.
 */
KOR_API const char* kor_system_get_env(const char* name);

KOR_END_DECLS

#endif
