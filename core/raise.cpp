// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cstdarg>

#include "core/check.h"
#include "core/variadic.h"
#include "quorvel/kor/exception.h"
#include "quorvel/kor/string.h"

using namespace kor;

namespace {

using Detail = char[sizeof KorException::message];

// The detail passes through the record, where the uncaught handler may look for it. It has been formatted apart from
// it, because the arguments may point in there.
void raise_text(KorResult_E code, const Detail& text) {
    const char* name = kor_result_to_string(code);
    kor_string_copy(kor_exception_get_exception()->message, text);
    kor_exception_fthrow(code, "[%s] %s", name, text);
}

}  // namespace

KOR_VARIADIC void kor::raise(KorResult_E code, const char* detail, ...) {
    Detail text;
    va_list arguments;
    va_start(arguments, detail);
    kor_string_vformat(text, sizeof text, detail, arguments);
    va_end(arguments);
    raise_text(code, text);
}

KOR_VARIADIC bool kor::refuse_if(bool wrong, const char* detail, ...) {
    if (!wrong) { return false; }
    Detail text;
    va_list arguments;
    va_start(arguments, detail);
    kor_string_vformat(text, sizeof text, detail, arguments);
    va_end(arguments);
    raise_text(KOR_RESULT_ILLEGAL_ARGUMENT, text);
    return true;
}
