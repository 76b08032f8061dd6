/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GCD_SIZED_H
#define QUORVEL_ABECS_CMD_GCD_SIZED_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * abecs_cmd_gcd_response for a destination of `size` bytes, the NUL included; 33 hold every number that GCD can ask
 * for. Its results and its errors, and besides: ILLEGAL_ARGUMENT "'size' is zero", behind "'out' is NULL";
 * PROTOCOL_ERROR "PP_VALUE is too long (max: %zu, read: %zu)" for a number that `out` has no room for, of which nothing
 * is written. quorvel/quorvel.h does not include it.
 */
KOR_API int32_t abecs_cmd_gcd_response_sized(AbecsComm* pinpad, char* out, size_t size, char* notification);

KOR_END_DECLS

#endif
