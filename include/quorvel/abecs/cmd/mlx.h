/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_MLX_H
#define QUORVEL_ABECS_CMD_MLX_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Loads the file at `path` into the PIN pad as `filename` of type `type` (see mli.h): MLI, as many MLR as it takes, and
 * MLE. The file is read block by block. A load that fails is left as it is: nothing more is sent.
 *
 * A status other than 0 is an error here: IO_ERROR "MLI returned %s", "MLR returned %s" or "MLE returned %s" with the
 * status's name.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'path' is NULL"; "'path' is not a regular file" for a folder, a
 * device or a pipe, which is not opened; "'to' and 'format' points to the same buffer" when the file cannot be opened;
 * for `filename` as in mli.h, once the file was read; "'szData' is zero" when it has become shorter since. MALLOC_ERROR
 * when the memory to open it is not there. IO_ERROR "File (%s) is too big (max: %u, req: %llu)" for 2^32 bytes or more;
 * for a file that cannot be read or closed (after another error, that one stays). And what the three commands and the
 * link raise.
 */
KOR_API void abecs_cmd_mlx(AbecsComm* pinpad, const char* path, const char* filename, uint8_t type);

/*
 * The CRC-16 (crc16.h) of the file at `path`, as MLI announces it; 0 for an empty one.
 *
 * ILLEGAL_ARGUMENT "'path' is NULL"; "'path' is not a regular file"; "'to' and 'format' points to the same buffer" when
 * the file cannot be opened. MALLOC_ERROR when the memory to open it is not there. IO_ERROR when it cannot be read or
 * closed.
 */
KOR_API uint16_t abecs_cmd_mlx_crc16(const char* path);

KOR_END_DECLS

#endif
