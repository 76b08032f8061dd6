/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_THREAD_H
#define QUORVEL_KOR_THREAD_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

/*
 * Sleeping. The library starts no threads.
 */
KOR_BEGIN_DECLS

/*
 * Sleeps for `millis` milliseconds. More than 4294967 (71 minutes) exceeds the platform's range and sleeps for less.
 *
 * Raises
 * - KOR_RESULT_ILLEGAL_ARGUMENT "millis == 0";
 * - KOR_RESULT_RUNTIME_ERROR "usleep() error: %d" with errno, 4 when a signal handler ended the sleep early.
 */
KOR_API void kor_thread_sleep(uint64_t millis);

KOR_END_DECLS

#endif
