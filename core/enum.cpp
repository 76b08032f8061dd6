// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/enum.h"

#include <climits>
#include <cstdarg>

#include "core/check.h"
#include "core/variadic.h"

using namespace kor;

namespace {

constexpr int32_t kEnd = INT_MIN;

}  // namespace

KOR_VARIADIC bool kor_enum_is_valid(int32_t value, ...) {
    if (refuse_if(value == kEnd, "%d is not acceptable as an enumerator", value)) { return false; }
    va_list enumerators;
    va_start(enumerators, value);
    int32_t next = kEnd;
    do { next = va_arg(enumerators, int32_t); } while (next != kEnd && next != value);
    va_end(enumerators);
    return next == value;
}

bool kor_enum_is_valid_range(int32_t value, int32_t first, int32_t last) { return first <= value && value <= last; }
