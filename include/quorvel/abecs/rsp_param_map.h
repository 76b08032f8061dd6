/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_RSP_PARAM_MAP_H
#define QUORVEL_ABECS_RSP_PARAM_MAP_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"
#include "quorvel/kor/map.h"

KOR_BEGIN_DECLS

typedef KorMap AbecsRspParamMap;

typedef struct AbecsRspParamValue {
    uint32_t size;
    uint8_t* data;
    bool owned;
} AbecsRspParamValue;

typedef struct AbecsRspParamMapIt {
    const AbecsRspParamMap* map;
    uint16_t id;
    AbecsRspParamValue value;
} AbecsRspParamMapIt;

KOR_API AbecsRspParamMap* abecs_rsp_param_map_new(void);
KOR_API AbecsRspParamValue* abecs_rsp_param_map_put(AbecsRspParamMap* map, uint16_t id, const AbecsRspParamValue* value,
                                                    bool owned);
KOR_API AbecsRspParamValue* abecs_rsp_param_map_get(const AbecsRspParamMap* map, uint16_t id);
KOR_API AbecsRspParamMapIt* abecs_rsp_param_map_begin(const AbecsRspParamMap* map, AbecsRspParamMapIt* out);
KOR_API AbecsRspParamMapIt* abecs_rsp_param_map_next(AbecsRspParamMapIt* it);

KOR_END_DECLS

#endif
