/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_RSP_PARSER_H
#define QUORVEL_ABECS_RSP_PARSER_H

#include <stdint.h>

#include "quorvel/abecs/packet.h"
#include "quorvel/abecs/param.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

typedef struct AbecsRspParser AbecsRspParser;

KOR_API AbecsRspParser* abecs_rsp_parser_new(void);
KOR_API void abecs_rsp_parser_delete(AbecsRspParser** parser);
KOR_API void abecs_rsp_parser_set_packet(AbecsRspParser* parser, AbecsPacket* responsePacket);
KOR_API const char* abecs_rsp_parser_get_id(const AbecsRspParser* parser);
KOR_API int32_t abecs_rsp_parser_get_stat(const AbecsRspParser* parser);
KOR_API AbecsParam* abecs_rsp_parser_read_param(AbecsRspParser* parser, AbecsParam* out);
KOR_API char* abecs_rsp_parser_read_notification(AbecsRspParser* parser, char* text);

KOR_END_DECLS

#endif
