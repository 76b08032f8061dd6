/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GDU_H
#define QUORVEL_ABECS_CMD_GDU_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/* Which of the DUKPT keys, by the PIN pad's own number. */
typedef enum AbecsCmdGduMethod_E KOR_ENUM_INT32 {
    ABECS_CMD_GDU_METHOD_2 = 2,
    ABECS_CMD_GDU_METHOD_3 = 3
} AbecsCmdGduMethod_E;

/*
 * GDU: reads the serial number of the DUKPT key at an index, 0 to 99, and returns RSP_STAT. When that is 0, `out` (21
 * bytes) holds it in 20 hex digits. Leading pairs "30" are taken for filling and dropped: a text that is shorter has
 * lost so many. After an error `out` is as it was, or empty.
 *
 * INDEX_OUT_OF_BOUNDS "Invalid idx: %d (maximum is 99)"; ILLEGAL_ARGUMENT "'out' is NULL", "Invalid enumerator for %s:
 * %d" with "AbecsCmdGduMethod_E". PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes, "Invalid RSP_ID
 * (expected %s, read: %s)" for that of another command, "Invalid RSP_LEN1 (expected: 20, read: %u)"; IO_ERROR for a
 * malformed field; and what the link raises, a null handle too.
 */
KOR_API int32_t abecs_cmd_gdu(AbecsComm* pinpad, AbecsCmdGduMethod_E method, uint8_t idx, char* out);

KOR_END_DECLS

#endif
