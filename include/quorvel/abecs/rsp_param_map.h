/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_RSP_PARAM_MAP_H
#define QUORVEL_ABECS_RSP_PARAM_MAP_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"
#include "quorvel/kor/map.h"

KOR_BEGIN_DECLS

/*
 * A response's parameters by id. It is a KorMap: it is cleared and deleted with kor_map_clear and kor_map_delete, and
 * sized with kor_map_size.
 *
 * The map copies the value records that are put into it, not the bytes they point to. Those of an entry put with
 * `owned` are adopted: the map overwrites them and frees them with kor_heap_free when the entry is replaced, and when
 * the map is cleared or deleted. Every other entry's bytes are the caller's and must outlive the entry. Values have no
 * terminator.
 *
 * A null map raises ILLEGAL_ARGUMENT "'map' is NULL".
 */

/* A map of parameters; abecs_rsp_param_map_new makes it. */
typedef KorMap AbecsRspParamMap;

/* A value: `size` bytes at `data`, null when there are none; `owned` tells whether the map frees them. */
typedef struct AbecsRspParamValue {
    uint32_t size; /* in bytes */
    uint8_t* data; /* not terminated */
    bool owned;    /* whether the map frees them */
} AbecsRspParamValue;

/* An iterator, in the caller's storage: the id and a copy of the value record of the entry it is on. */
typedef struct AbecsRspParamMapIt {
    const AbecsRspParamMap* map; /* that it walks through */
    uint16_t id;                 /* of the entry */
    AbecsRspParamValue value;    /* of the entry */
} AbecsRspParamMapIt;

/* An empty map, the caller's to kor_map_delete. MALLOC_ERROR. */
KOR_API AbecsRspParamMap* abecs_rsp_param_map_new(void);

/*
 * Puts a value (null: an empty one) under an id in place of the one there, and returns the stored record. `owned`
 * counts, not the record's own flag. Putting the very bytes that are stored under the id keeps them. ILLEGAL_ARGUMENT
 * "invalid 'data' x 'szData'" for bytes without a size or a size without bytes; MALLOC_ERROR. After a raise the bytes
 * are still the caller's.
 */
KOR_API AbecsRspParamValue* abecs_rsp_param_map_put(AbecsRspParamMap* map, uint16_t id, const AbecsRspParamValue* value,
                                                    bool owned);

/* The stored record of an id, valid until it is replaced or the map is cleared or deleted; null when there is none. */
KOR_API AbecsRspParamValue* abecs_rsp_param_map_get(const AbecsRspParamMap* map, uint16_t id);

/*
 * Puts `out` on the first entry and returns it; null, with `out` untouched, for an empty map. The order is the map's
 * own. ILLEGAL_ARGUMENT "'out' is NULL".
 */
KOR_API AbecsRspParamMapIt* abecs_rsp_param_map_begin(const AbecsRspParamMap* map, AbecsRspParamMapIt* out);

/*
 * Moves to the next entry and returns `it`; null at the end. Nothing must have been put since
 * abecs_rsp_param_map_begin. ILLEGAL_ARGUMENT: "'it' is NULL"; "'it->map' is NULL"; "'it->key' not present in
 * 'it->map'".
 */
KOR_API AbecsRspParamMapIt* abecs_rsp_param_map_next(AbecsRspParamMapIt* it);

KOR_END_DECLS

#endif
