// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_CHECK_H
#define QUORVEL_CORE_CHECK_H

#include <cstddef>
#include <cstdint>

#include "core/raise.h"

// The checks of arguments. Each raises KOR_RESULT_ILLEGAL_ARGUMENT where there is something to refuse, and is then
// true, so that the caller leaves with its harmless value; as every raise may return, it must. `||` keeps the
// documented order:
//
//     if (refuse_null(out, "'out' is NULL") || refuse_if(length > kMax, "Too long: %zu", length)) { return false; }
//
// What the detail is formatted from is evaluated in any case: it must not lean on what is being refused.
namespace kor {

[[nodiscard]] inline bool refuse_null(const void* pointer, const char* text) {
    if (pointer == nullptr) { raise(KOR_RESULT_ILLEGAL_ARGUMENT, "%s", text); }
    return pointer == nullptr;
}

template <typename Result, typename... Arguments>
[[nodiscard]] bool refuse_null(Result (*function)(Arguments...), const char* text) {
    return refuse_null(reinterpret_cast<const void*>(function), text);
}

// Of bytes that may be none at all: a pointer that is null although they are counted.
[[nodiscard]] inline bool refuse_missing(const void* bytes, size_t count, const char* text) {
    return count != 0 && refuse_null(bytes, text);
}

[[nodiscard, gnu::format(printf, 2, 3)]] bool refuse_if(bool wrong, const char* detail, ...);

// Of an enumeration without gaps; `type` is its name.
[[nodiscard]] inline bool refuse_outside(int32_t value, int32_t first, int32_t last, const char* type) {
    return refuse_if(value < first || value > last, "Invalid enumerator for %s: %d", type, value);
}

}  // namespace kor

#endif
