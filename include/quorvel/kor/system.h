/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_SYSTEM_H
#define QUORVEL_KOR_SYSTEM_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

KOR_API int64_t kor_system_current_time_millis(void);
KOR_API int32_t kor_system_random(int32_t min, int32_t max);
KOR_API const char* kor_system_os_name(void);
KOR_API const char* kor_system_os_arch(void);
KOR_API const char* kor_system_get_env(const char* name);

KOR_END_DECLS

#endif
