// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "core/raise.h"

#include <cstdarg>

#include "quorvel/kor/exception.h"
#include "quorvel/kor/string.h"

namespace kor {

// The detail passes through the record, where the uncaught handler may look for it. It is formatted apart from it,
// because the arguments may point in there.
void raise(KorResult_E code, const char* detail, ...) {
    KorException* record = kor_exception_get_exception();
    char text[sizeof record->message];
    va_list arguments;
    va_start(arguments, detail);
    kor_string_vformat(text, sizeof text, detail, arguments);
    va_end(arguments);
    const char* name = kor_result_to_string(code);
    kor_string_copy(record->message, text);
    kor_exception_fthrow(code, "[%s] %s", name, text);
}

}  // namespace kor
