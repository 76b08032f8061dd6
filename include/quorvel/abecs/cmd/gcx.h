/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GCX_H
#define QUORVEL_ABECS_CMD_GCX_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/emv_data.h"
#include "quorvel/abecs/rsp_param_map.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * GCX: has the PIN pad capture a card, as GCR does, with parameters on both ways. The request is put together in a
 * builder: it is sent as often as the caller likes, and each parameter can be set once between two resets. Parameters
 * travel in the order of the calls, but one that the first block has no room for travels in the second.
 *
 * Setters raise ILLEGAL_ARGUMENT "'builder' is NULL", then the errors given with them, then ILLEGAL_STATE "%s already
 * set" with the parameter's name; MALLOC_ERROR. After an error the builder is as it was.
 */
typedef struct AbecsCmdGcxBuilder AbecsCmdGcxBuilder;

/* A builder, reset with the arguments; the caller's, to abecs_cmd_gcx_builder_delete. Errors: those of the reset;
 * MALLOC_ERROR. */
KOR_API AbecsCmdGcxBuilder* abecs_cmd_gcx_builder_new(const char* trnDate, const char* trnTime);

/*
 * Leaves nothing but the date, six digits YYMMDD, and the time, six digits HHMMSS. ILLEGAL_ARGUMENT, with the builder
 * as it was: "'builder' is NULL"; "'trnDate' is NULL", "'trnTime' is NULL"; those of abecs_data_check_n_string for
 * each. MALLOC_ERROR: the builder is to be reset again before it is sent.
 */
KOR_API void abecs_cmd_gcx_builder_reset(AbecsCmdGcxBuilder* builder, const char* trnDate, const char* trnTime);

/* Frees the builder and sets the variable to none; none is ignored. Never raises. */
KOR_API void abecs_cmd_gcx_builder_delete(AbecsCmdGcxBuilder** builder);

/* SPE_TRNTYPE. */
KOR_API void abecs_cmd_gcx_builder_trntype(AbecsCmdGcxBuilder* builder, uint8_t trnType);

/* SPE_ACQREF, the acquirer. "Invalid 'acqRef' (maximum: 99, requested: %d)". */
KOR_API void abecs_cmd_gcx_builder_acqref(AbecsCmdGcxBuilder* builder, uint8_t acqRef);

/* SPE_APPTYPE: `szAppTypes` (1 to 10) types of application, each 1 to 98. "'appTypes' is NULL"; "invalid value for
 * 'szAppTypes': %zu (min: 1, max: 10)"; "invalid value for 'appTypes[%zu]: %d (min: 1, max: 98)". */
KOR_API void abecs_cmd_gcx_builder_apptype(AbecsCmdGcxBuilder* builder, const uint8_t* appTypes, size_t szAppTypes);

/*
 * SPE_AIDLIST: 1 to 128 records of the AID table, each the two digits of the acquirer and the two digits or letters of
 * the record, one behind the other. "'aidRecords' is NULL"; "Invalid length for for 'aidRecords': %zu (must be a
 * multiple of 4)"; "Invalid number of records 'aidRecords': %zu (min: 1, max: 128)"; "Invalid acquirer identifier at
 * index %zu: " and the two characters in quotation marks; "Invalid record at index %zu: 0x%02x 0x%02x".
 */
KOR_API void abecs_cmd_gcx_builder_aidlist(AbecsCmdGcxBuilder* builder, const char* aidRecords);

/* SPE_AMOUNT and SPE_CASHBACK, in the smallest unit of the currency. "Number length (%zu) is greater than field length
 * (%zu)" from 10^12 on, "'i' (%llu) is too long (maximum: 9999999999999" from 10^13 on. */
KOR_API void abecs_cmd_gcx_builder_amount(AbecsCmdGcxBuilder* builder, uint64_t amount);
KOR_API void abecs_cmd_gcx_builder_cashback(AbecsCmdGcxBuilder* builder, uint64_t cashback);

/* SPE_TRNCURR, the numeric code of the currency. "Invalid 'trnCurr' (maximum: 999, requested: %d)". */
KOR_API void abecs_cmd_gcx_builder_trncurr(AbecsCmdGcxBuilder* builder, uint16_t trnCurr);

/* SPE_GCXOPT, five digits, and SPE_PANMASK, four digits. The errors of abecs_data_check_n_string. */
KOR_API void abecs_cmd_gcx_builder_gcxopt(AbecsCmdGcxBuilder* builder, const char* gcxOpt);
KOR_API void abecs_cmd_gcx_builder_panmask(AbecsCmdGcxBuilder* builder, const char* panMask);

/* SPE_EMVDATA. "'emvData' is NULL"; "'emvData->szData' is too long (size: %zu, maximum: %d)" above 512. */
KOR_API void abecs_cmd_gcx_builder_emvdata(AbecsCmdGcxBuilder* builder, const AbecsEmvData* emvData);

/* SPE_TAGLIST. "'tagList' is NULL"; "'tagList' is too long (size: %zu, maximum: %d)" above 128. */
KOR_API void abecs_cmd_gcx_builder_taglist(AbecsCmdGcxBuilder* builder, const AbecsTagList* tagList);

/* SPE_TIMEOUT, in seconds. */
KOR_API void abecs_cmd_gcx_builder_timeout(AbecsCmdGcxBuilder* builder, uint8_t timeout);

/* SPE_DSPMSG, at most 128 characters; carriage returns break lines. "'dspMsg' is NULL"; "'dspMsg' is too long (length:
 * %zu, max: 128)"; "Invalid character (0x%02X) at position %zu" for any other control character. */
KOR_API void abecs_cmd_gcx_builder_dspmsg(AbecsCmdGcxBuilder* builder, const char* dspMsg);

/* Sends GCX and blocks the link on it. ILLEGAL_ARGUMENT "'pinpad' is NULL", "'builder' is NULL"; and what the link
 * raises. */
KOR_API void abecs_cmd_gcx(AbecsComm* pinpad, AbecsCmdGcxBuilder* builder);

/*
 * Reads the answer. Returns -1 (ABECS_RSP_STAT_ST_PROCESSING) when there is none yet, or three damaged frames have
 * come; -2 (ABECS_RSP_STAT_ST_NOTIFICATION) after a message for the cardholder, stored in `notification` (33 bytes, or
 * null), and in both cases the link stays blocked; else RSP_STAT, the link being free again. When that is 0, `out`
 * holds each item of the answer under its data id (AbecsRspDatId_E), as bytes of its own without a terminator; it is
 * emptied first, and empty after any other outcome but the first three errors.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL", "'out' is NULL"; ILLEGAL_STATE "%s was not sent yet", `out` being untouched;
 * PROTOCOL_ERROR "(%s) Invalid RSP_ID: %s)" for the answer of another command; those of abecs_rsp_parser_set_packet and
 * abecs_rsp_parser_read_param for a malformed one; and what the link raises. An error leaves the blocked state as it
 * is.
 */
KOR_API int32_t abecs_cmd_gcx_response(AbecsComm* pinpad, AbecsRspParamMap* out, char* notification);

KOR_END_DECLS

#endif
