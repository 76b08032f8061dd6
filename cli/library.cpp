// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/library.h"

namespace quorvel::cli::detail {

// The only setjmp of the program: its locals are few and none has a destructor before the try block is over.
void run(void (*body)(void*), void* context) {
    volatile bool ended = false;
    KorException raised{};
    KOR_TRY {
        body(context);
        ended = true;
    }
    KOR_CATCH(KOR_RESULT_OK) { kor_exception_get(&raised); }
    KOR_END_TRY;
    if (raised.error != KOR_RESULT_OK) { throw LibraryError(raised.error, raised.message); }
    if (!ended) { throw LibraryError(KOR_RESULT_MALLOC_ERROR, "out of memory"); }
}

}  // namespace quorvel::cli::detail
