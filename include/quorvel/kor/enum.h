/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_ENUM_H
#define QUORVEL_KOR_ENUM_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * True when `value` is one of the numbers that follow, which end with INT_MIN.
 * ILLEGAL_ARGUMENT "%d is not acceptable as an enumerator" when `value` is INT_MIN itself.
 */
KOR_API bool kor_enum_is_valid(int32_t value, ...);

/* True when first <= value <= last. */
KOR_API bool kor_enum_is_valid_range(int32_t value, int32_t first, int32_t last);

KOR_END_DECLS

#endif
