/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#include <string.h>

#include "quorvel/kor/exception.h"

static void add(char* trace, const char* letter) { strcat(trace, letter); }

void try_branches(char* trace, int16_t code) {
    KOR_TRY {
        kor_exception_throw(code, "thrown");
        add(trace, "b");
    }
    KOR_CATCH(KOR_RESULT_IO_ERROR) { add(trace, "6"); }
    KOR_CATCH(KOR_RESULT_OK) { add(trace, "0"); }
    KOR_CATCH(KOR_RESULT_TIMEOUT_ERROR) { add(trace, "7"); }
    KOR_CLEANUP { add(trace, "u"); }
    KOR_END_TRY;
    add(trace, kor_exception_get_error() == 0 ? "e" : "p");
}

void try_unmatched(char* trace) {
    KOR_TRY { kor_exception_throw(KOR_RESULT_TIMEOUT_ERROR, "late"); }
    KOR_CATCH(KOR_RESULT_IO_ERROR) { add(trace, "6"); }
    KOR_CLEANUP { add(trace, "u"); }
    KOR_END_TRY;
    add(trace, "x");
}

void try_error_in_cleanup(char* trace) {
    KOR_TRY { kor_exception_throw(KOR_RESULT_TIMEOUT_ERROR, "first"); }
    KOR_CATCH(KOR_RESULT_TIMEOUT_ERROR) { add(trace, "7"); }
    KOR_CATCH(KOR_RESULT_IO_ERROR) { add(trace, "6"); }
    KOR_CLEANUP {
        add(trace, "u");
        kor_exception_throw(KOR_RESULT_IO_ERROR, "second");
    }
    KOR_END_TRY;
    add(trace, "e");
}

void try_error_in_catch(char* trace) {
    KOR_TRY {
        KOR_TRY { kor_exception_throw(KOR_RESULT_TIMEOUT_ERROR, "inner"); }
        KOR_CATCH(KOR_RESULT_OK) {
            add(trace, "i");
            kor_exception_throw(KOR_RESULT_IO_ERROR, "from the branch");
        }
        KOR_END_TRY;
        add(trace, "x");
    }
    KOR_CATCH(KOR_RESULT_IO_ERROR) { add(trace, "o"); }
    KOR_END_TRY;
    add(trace, "e");
}

void try_nested(char* trace, int depth) {
    KOR_TRY {
        add(trace, "(");
        if (depth > 1) {
            try_nested(trace, depth - 1);
        } else {
            kor_exception_throw(KOR_RESULT_IO_ERROR, "deep");
        }
    }
    KOR_CLEANUP { add(trace, ")"); }
    KOR_END_TRY;
}
