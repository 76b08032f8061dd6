/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_BUILDER_H
#define QUORVEL_ABECS_CMD_BUILDER_H

#include "quorvel/abecs/packet.h"
#include "quorvel/abecs/param.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Lays out a command whose data is a run of parameters, in one or two blocks of at most 999 bytes.
 */
typedef struct AbecsCmdBuilder AbecsCmdBuilder;

/* A builder without id and parameters; the caller's, to abecs_cmd_builder_delete. MALLOC_ERROR. */
KOR_API AbecsCmdBuilder* abecs_cmd_builder_new(void);

/* Frees the builder and sets the variable to none; none is ignored. */
KOR_API void abecs_cmd_builder_delete(AbecsCmdBuilder** builder);

/* Takes away id and parameters. ILLEGAL_ARGUMENT "'builder' is NULL". */
KOR_API void abecs_cmd_builder_reset(AbecsCmdBuilder* builder);

/* Sets the three-character command id, copied. ILLEGAL_ARGUMENT: "'builder' is NULL"; "'cmdId' is NULL"; "Invalid
 * 'cmdId': %s" for any other length. */
KOR_API void abecs_cmd_builder_set_cmd_id(AbecsCmdBuilder* builder, const char* cmdId);

/*
 * Appends the parameter to the first block if it has room for it, else to the second, and resets the parameter for
 * reuse. So a small parameter can travel before a larger one that was added earlier.
 * ILLEGAL_ARGUMENT "'builder' is NULL", "'param' is NULL"; IO_ERROR when neither block has room: the blocks are then as
 * they were.
 */
KOR_API void abecs_cmd_builder_add_param(AbecsCmdBuilder* builder, AbecsParam* param);

/*
 * Writes the command into `out`, which is emptied first, and returns `out`. Consumes the parameters and takes away the
 * id. ILLEGAL_ARGUMENT "'builder' is NULL", "'out' is NULL"; ILLEGAL_STATE "Builder does not have assigned a command
 * id"; ILLEGAL_ARGUMENT "Invalid character (0x%02X) at position %zu" for an id that is not of printable ASCII, and the
 * builder is then as it was.
 */
KOR_API AbecsPacket* abecs_cmd_builder_build(AbecsCmdBuilder* builder, AbecsPacket* out);

KOR_END_DECLS

#endif
