/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_FCX_H
#define QUORVEL_ABECS_CMD_FCX_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/emv_data.h"
#include "quorvel/abecs/rsp_param_map.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * FCX: hands the acquirer's answer to the card, as FNC does, with parameters on both ways and after GOX. The request
 * is put together in a builder: it is sent as often as the caller likes, and each parameter can be set once between
 * two resets.
 *
 * Setters raise ILLEGAL_ARGUMENT "'builder' is NULL", then the errors given with them, then ILLEGAL_STATE "%s already
 * set" with the parameter's name; MALLOC_ERROR. After an error the builder is as it was.
 */
typedef struct AbecsCmdFcxBuilder AbecsCmdFcxBuilder;

/* A builder, reset with the argument; the caller's, to abecs_cmd_fcx_builder_delete. Errors: those of the reset;
 * MALLOC_ERROR. */
KOR_API AbecsCmdFcxBuilder* abecs_cmd_fcx_builder_new(const char* fcxOpt);

/*
 * Leaves nothing but the options SPE_FCXOPT, four digits. With a first one of 0 or 1 the acquirer was reached, and its
 * response code is needed; with any other there is none. ILLEGAL_ARGUMENT, with the builder as it was: "'builder'
 * is NULL"; those of abecs_data_check_n_string. MALLOC_ERROR: the builder is to be reset again before it is sent.
 */
KOR_API void abecs_cmd_fcx_builder_reset(AbecsCmdFcxBuilder* builder, const char* fcxOpt);

/* Frees the builder and sets the variable to none; none is ignored. Never raises. */
KOR_API void abecs_cmd_fcx_builder_delete(AbecsCmdFcxBuilder** builder);

/* SPE_ARC, the response code: two digits or letters. "'arc' is NULL"; "Invalid length of 'arc': %zu (expected: 2)";
 * "arc[%zu] is invalid: 0x%02X"; ILLEGAL_STATE "SPE_ARC is not required". */
KOR_API void abecs_cmd_fcx_builder_arc(AbecsCmdFcxBuilder* builder, const char* arc);

/* SPE_EMVDATA. "'emvData' is NULL"; "'emvData->szData' is too long (size: %zu, maximum: %d)" above 512. */
KOR_API void abecs_cmd_fcx_builder_emvdata(AbecsCmdFcxBuilder* builder, const AbecsEmvData* emvData);

/* SPE_TAGLIST. "'tagList' is NULL"; "'tagList' is too long (size: %zu, maximum: %d)" above 128. */
KOR_API void abecs_cmd_fcx_builder_taglist(AbecsCmdFcxBuilder* builder, const AbecsTagList* tagList);

/* SPE_TIMEOUT, in seconds. */
KOR_API void abecs_cmd_fcx_builder_timeout(AbecsCmdFcxBuilder* builder, uint8_t timeout);

/* Sends FCX and blocks the link on it. ILLEGAL_ARGUMENT "'pinpad' is NULL", "'builder' is NULL", "'SPE_ARC' was not
 * defined" when the options need it; and what the link raises. */
KOR_API void abecs_cmd_fcx(AbecsComm* pinpad, AbecsCmdFcxBuilder* builder);

/*
 * Reads the answer. Returns -1 (ABECS_RSP_STAT_ST_PROCESSING) when there is none yet, or three damaged frames have
 * come; -2 (ABECS_RSP_STAT_ST_NOTIFICATION) after a message for the cardholder, stored in `notification` (33 bytes, or
 * null), and in both cases the link stays blocked; else RSP_STAT, the link being free again. When that is 0, `out`
 * holds each item of the answer under its data id (AbecsRspDatId_E), as bytes of its own without a terminator. It is
 * emptied before anything is read, and empty after any other outcome but the first three errors.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL", "'out' is NULL"; ILLEGAL_STATE "%s was not sent yet"; PROTOCOL_ERROR "(%s)
 * Invalid RSP_ID: %s)" for the answer of another command; those of abecs_rsp_parser_set_packet and
 * abecs_rsp_parser_read_param for a malformed one; and what the link raises. After an error the link stays blocked.
 */
KOR_API int32_t abecs_cmd_fcx_response(AbecsComm* pinpad, AbecsRspParamMap* out, char* notification);

KOR_END_DECLS

#endif
