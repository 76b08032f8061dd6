/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_RESULT_H
#define QUORVEL_KOR_RESULT_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/* The codes of every error the library raises. */
typedef int16_t KorResult_E;

/* The codes themselves. */
enum {
    KOR_RESULT_OK = 0,
    KOR_RESULT_RUNTIME_ERROR = 1,       /* something that should not happen: an unknown enumerator, a failed service */
    KOR_RESULT_ILLEGAL_ARGUMENT = 2,    /* the caller passed something the function does not take */
    KOR_RESULT_ILLEGAL_STATE = 3,       /* the call is not allowed now */
    KOR_RESULT_INDEX_OUT_OF_BOUNDS = 4, /* an index beyond its range */
    KOR_RESULT_MALLOC_ERROR = 5,        /* memory ran out */
    KOR_RESULT_IO_ERROR = 6,            /* a system call failed, a buffer is too short, received data is malformed */
    KOR_RESULT_TIMEOUT_ERROR = 7,       /* no answer in time */
    KOR_RESULT_FILE_NOT_FOUND = 8,      /* no such file, directory or port */
    KOR_RESULT_ENCODING_ERROR = 9,      /* reserved */
    KOR_RESULT_DEVICE_BUSY = 10,        /* the port is in use */
    KOR_RESULT_PERMISSION_DENIED = 11,  /* the port may not be opened by this user */
    KOR_RESULT_PROTOCOL_ERROR = 12,     /* the PIN pad answered what the protocol does not allow */
    KOR_RESULT_CRYPT_ERROR = 13         /* a cipher operation failed */
};

/*
 * The enumerator's name, for instance "KOR_RESULT_IO_ERROR"; a constant.
 * RUNTIME_ERROR "Unhandled KorResult_E: %d\n" for any other code.
 */
KOR_API const char* kor_result_to_string(KorResult_E code);

KOR_END_DECLS

#endif
