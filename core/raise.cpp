// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "core/raise.h"

#include <cstdarg>

#include "quorvel/kor/exception.h"
#include "quorvel/kor/string.h"

namespace kor {

void raise(KorResult_E code, const char* detail, ...) {
    const char* name = kor_result_to_string(code);
    KorException* record = kor_exception_get_exception();
    va_list arguments;
    va_start(arguments, detail);
    kor_string_vformat(record->message, sizeof record->message, detail, arguments);
    va_end(arguments);
    kor_exception_fthrow(code, "[%s] %s", name, record->message);
}

}  // namespace kor
