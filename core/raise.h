// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_RAISE_H
#define QUORVEL_CORE_RAISE_H

#include "quorvel/kor/result.h"

namespace kor {

// Raises `code` with the text "[NAME] detail", the detail being formatted from `detail` and cut to 255 characters; a
// null `detail` is an empty one.
//
// A raise can return: with no try block open and an uncaught handler that returns, control comes back here. So leave
// at once with a harmless value and never touch what was complained about:
//
//     if (length > kMax) { return raise(KOR_RESULT_IO_ERROR, "Too long: %zu", length), nullptr; }
//
// core/check.h has the checks of arguments.
[[gnu::format(printf, 2, 3)]] void raise(KorResult_E code, const char* detail, ...);

}  // namespace kor

#endif
