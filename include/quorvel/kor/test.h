/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_TEST_H
#define QUORVEL_KOR_TEST_H

#include <stdbool.h>
#include <stddef.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef struct KorTestSuite KorTestSuite;

typedef void (*KorTestFn)(void);

typedef void (*KorTestSignalHandler)(int signal);

KOR_API KorTestSuite* kor_test_suite_new(void);
KOR_API void kor_test_suite_delete(KorTestSuite** suite);
KOR_API void kor_test_suite_add_case(KorTestSuite* suite, const char* title, KorTestFn fn);
KOR_API void kor_test_suite_run(KorTestSuite* suite);
KOR_API bool kor_test_mem_equals(const void* lhs, const void* rhs, size_t size);
KOR_API void kor_test_signal(int signal, KorTestSignalHandler handler);
KOR_API void kor_test_raise_abort(void);

KOR_END_DECLS

#endif
