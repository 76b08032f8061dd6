/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_THREAD_H
#define QUORVEL_KOR_THREAD_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/* Sleeping. The library starts no threads. */

/*
 * Sleeps for `millis` milliseconds. The platform counts microseconds in 32 bits: more than 4294967 milliseconds sleep
 * for less.
 *
 * ILLEGAL_ARGUMENT "millis == 0"; RUNTIME_ERROR "usleep() error: %d" with errno, which is 4 when a signal ended the
 * sleep early.
 */
KOR_API void kor_thread_sleep(uint64_t millis);

KOR_END_DECLS

#endif
