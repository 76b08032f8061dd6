/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_RESULT_H
#define QUORVEL_KOR_RESULT_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef int16_t KorResult_E;

enum {
    KOR_RESULT_OK = 0,
    KOR_RESULT_RUNTIME_ERROR = 1,
    KOR_RESULT_ILLEGAL_ARGUMENT = 2,
    KOR_RESULT_ILLEGAL_STATE = 3,
    KOR_RESULT_INDEX_OUT_OF_BOUNDS = 4,
    KOR_RESULT_MALLOC_ERROR = 5,
    KOR_RESULT_IO_ERROR = 6,
    KOR_RESULT_TIMEOUT_ERROR = 7,
    KOR_RESULT_FILE_NOT_FOUND = 8,
    KOR_RESULT_ENCODING_ERROR = 9,
    KOR_RESULT_DEVICE_BUSY = 10,
    KOR_RESULT_PERMISSION_DENIED = 11,
    KOR_RESULT_PROTOCOL_ERROR = 12,
    KOR_RESULT_CRYPT_ERROR = 13
};

KOR_API const char* kor_result_to_string(KorResult_E code);

KOR_END_DECLS

#endif
