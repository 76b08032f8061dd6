/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#define LEAVE_BLOCK leave_block_c
#define LEAVE_NESTED leave_nested_c
#include "tests/core/leave_block.inc"

/* Raises each code in its place; success raises nothing. Adds a letter to `trace` for what it passes. */
void try_branches(char* trace, int16_t code, int16_t inCatch, int16_t inCleanup) {
    KOR_TRY {
        kor_exception_throw(code, "thrown");
        add(trace, "b");
    }
    KOR_CATCH(KOR_RESULT_IO_ERROR) {
        add(trace, "6");
        kor_exception_throw(inCatch, "in catch");
    }
    KOR_CATCH(KOR_RESULT_OK) { add(trace, "0"); }
    KOR_CATCH(KOR_RESULT_TIMEOUT_ERROR) { add(trace, "7"); }
    KOR_CLEANUP {
        add(trace, "u");
        kor_exception_throw(inCleanup, "in clean-up");
    }
    KOR_END_TRY;
    add(trace, kor_exception_get_error() == 0 ? "e" : "p");
}

/* An error that no branch is for. */
void try_nested(char* trace, int depth) {
    KOR_TRY {
        add(trace, "(");
        if (depth > 1) { try_nested(trace, depth - 1); }
        kor_exception_throw(KOR_RESULT_IO_ERROR, "deep");
    }
    KOR_CATCH(KOR_RESULT_TIMEOUT_ERROR) { add(trace, "7"); }
    KOR_CLEANUP { add(trace, ")"); }
    KOR_END_TRY;
    add(trace, "x");
}
