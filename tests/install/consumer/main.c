/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#include <quorvel/quorvel.h>
#include <stdio.h>

/* The version, then the text of an error that the library raised and this program caught. */
int main(void) {
    printf("%s\n", kor_version_project());
    KOR_TRY { kor_exception_get(NULL); }
    KOR_CATCH(KOR_RESULT_ILLEGAL_ARGUMENT) { printf("%s\n", kor_exception_get_message()); }
    KOR_END_TRY;
    return 0;
}
