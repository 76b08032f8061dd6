/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_BUILDER_H
#define QUORVEL_ABECS_CMD_BUILDER_H

#include "quorvel/abecs/packet.h"
#include "quorvel/abecs/param.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef struct AbecsCmdBuilder AbecsCmdBuilder;

KOR_API AbecsCmdBuilder* abecs_cmd_builder_new(void);
KOR_API void abecs_cmd_builder_delete(AbecsCmdBuilder** builder);
KOR_API void abecs_cmd_builder_reset(AbecsCmdBuilder* builder);
KOR_API void abecs_cmd_builder_set_cmd_id(AbecsCmdBuilder* builder, const char* cmdId);
KOR_API void abecs_cmd_builder_add_param(AbecsCmdBuilder* builder, AbecsParam* param);
KOR_API AbecsPacket* abecs_cmd_builder_build(AbecsCmdBuilder* builder, AbecsPacket* out);

KOR_END_DECLS

#endif
