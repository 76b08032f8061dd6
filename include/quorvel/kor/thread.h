/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_THREAD_H
#define QUORVEL_KOR_THREAD_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

KOR_API void kor_thread_sleep(uint64_t millis);

KOR_END_DECLS

#endif
