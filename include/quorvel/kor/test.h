/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_TEST_H
#define QUORVEL_KOR_TEST_H

#include <stdbool.h>
#include <stddef.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * A minimal test harness: a suite registers named functions and runs them.
 *
 * A function without arguments or result is a case. It fails by raising, which leaves kor_test_suite_run too.
 */

/* A suite; kor_test_suite_new makes it. */
typedef struct KorTestSuite KorTestSuite;

/* A case. */
typedef void (*KorTestFn)(void);

/* What is called with the number of a signal that has come. */
typedef void (*KorTestSignalHandler)(int signal);

/* An empty suite. Delete it with kor_test_suite_delete. MALLOC_ERROR. */
KOR_API KorTestSuite* kor_test_suite_new(void);

/* Frees the suite and its cases and sets the caller's variable to none. */
KOR_API void kor_test_suite_delete(KorTestSuite** suite);

/*
 * Registers `fn` under `title`, which is copied. A suite takes each function and each title once.
 *
 * ILLEGAL_ARGUMENT, in this order: "'suite' is NULL"; "'title' is NULL"; "'fn' is NULL"; "Test case function already
 * registered"; "Test case title already registered". MALLOC_ERROR: the suite is as it was, and the same call can be
 * made again.
 */
KOR_API void kor_test_suite_add_case(KorTestSuite* suite, const char* title, KorTestFn fn);

/*
 * Prints "---- title ----" to standard output and calls the function, for each case. The order follows the functions'
 * addresses, not the registration. ILLEGAL_ARGUMENT "'suite' is NULL".
 */
KOR_API void kor_test_suite_run(KorTestSuite* suite);

/* Whether the `size` bytes at `lhs` and `rhs` are the same. */
KOR_API bool kor_test_mem_equals(const void* lhs, const void* rhs, size_t size);

/* Has `handler` called on `signal`; none restores the default. */
KOR_API void kor_test_signal(int signal, KorTestSignalHandler handler);

/* Sends SIGABRT to the process; returns if a handler does. */
KOR_API void kor_test_raise_abort(void);

KOR_END_DECLS

#endif
