/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GOX_H
#define QUORVEL_ABECS_CMD_GOX_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/emv_data.h"
#include "quorvel/abecs/rsp_param_map.h"
#include "quorvel/abecs/spe_mthd_pin.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * GOX: runs the card's application up to its first decision, as GOC does, with parameters on both ways, after GCX. The
 * request is put together in a builder: it is sent as often as the caller likes, and each parameter can be set once
 * between two resets.
 *
 * Setters raise ILLEGAL_ARGUMENT "'builder' is NULL", then the errors given with them, then ILLEGAL_STATE "%s already
 * set" with the parameter's name; MALLOC_ERROR. After an error the builder is as it was.
 */
typedef struct AbecsCmdGoxBuilder AbecsCmdGoxBuilder;

/* A builder, reset with the arguments; the caller's, to abecs_cmd_gox_builder_delete. Errors: those of the reset;
 * MALLOC_ERROR. */
KOR_API AbecsCmdGoxBuilder* abecs_cmd_gox_builder_new(uint8_t acqRef, AbecsSpeMthdPin_E mthdPin, uint8_t keyIdx);

/*
 * Leaves nothing but the acquirer, the method of PIN encryption and the index of its key. ILLEGAL_ARGUMENT, with the
 * builder as it was: "'builder' is NULL"; "Invalid 'acqRef': %d (min: 0, max: 99)"; "Invalid enumerator for %s: %d";
 * "Invalid 'keyIdx': %d (min: 0, max: 99)". MALLOC_ERROR: the builder is to be reset again before it is sent.
 */
KOR_API void abecs_cmd_gox_builder_reset(AbecsCmdGoxBuilder* builder, uint8_t acqRef, AbecsSpeMthdPin_E mthdPin,
                                         uint8_t keyIdx);

/* Frees the builder and sets the variable to none; none is ignored. Never raises. */
KOR_API void abecs_cmd_gox_builder_delete(AbecsCmdGoxBuilder** builder);

/*
 * SPE_WKENC, the working key under its master key: 8 bytes for ABECS_SPE_MTHD_PIN_MK_WK_DES, 16 for
 * ABECS_SPE_MTHD_PIN_MK_WK_TDES, which both need it. ILLEGAL_STATE "PIN encryption method (%s) does not use SPE_WKENC
 * parameter" for the others; then "'wkenc' is NULL"; "'szWkenc' is invalid (expected: %zu, available: %zu)".
 */
KOR_API void abecs_cmd_gox_builder_wkenc(AbecsCmdGoxBuilder* builder, const uint8_t* wkenc, size_t szWkenc);

/* SPE_TRNTYPE. */
KOR_API void abecs_cmd_gox_builder_trntype(AbecsCmdGoxBuilder* builder, uint8_t trnType);

/* SPE_AMOUNT and SPE_CASHBACK, in the smallest unit of the currency. "Number length (%zu) is greater than field length
 * (%zu)" from 10^12 on, "'i' (%llu) is too long (maximum: 9999999999999" from 10^13 on. */
KOR_API void abecs_cmd_gox_builder_amount(AbecsCmdGoxBuilder* builder, uint64_t amount);
KOR_API void abecs_cmd_gox_builder_cashback(AbecsCmdGoxBuilder* builder, uint64_t cashback);

/* SPE_TRNCURR, the numeric code of the currency. "Invalid 'trnCurr' (maximum: 999, requested: %d)". */
KOR_API void abecs_cmd_gox_builder_trncurr(AbecsCmdGoxBuilder* builder, uint16_t trnCurr);

/* SPE_GOXOPT, five digits. The errors of abecs_data_check_n_string. */
KOR_API void abecs_cmd_gox_builder_goxopt(AbecsCmdGoxBuilder* builder, const char* goxOpt);

/* SPE_DSPMSG, at most 128 characters; carriage returns break lines. "'dspMsg' is NULL"; "'dspMsg' is too long (length:
 * %zu, max: 128)"; "Invalid character (0x%02X) at position %zu" for any other control character. */
KOR_API void abecs_cmd_gox_builder_dspmsg(AbecsCmdGoxBuilder* builder, const char* dspMsg);

/* SPE_TRMPAR, the 10 bytes at `trmPar`: the terminal's risk management. "'trmPar' is NULL". */
KOR_API void abecs_cmd_gox_builder_trmpar(AbecsCmdGoxBuilder* builder, const uint8_t* trmPar);

/* SPE_EMVDATA. "'emvData' is NULL"; "'emvData->szData' is too long (size: %zu, maximum: %d)" above 512. */
KOR_API void abecs_cmd_gox_builder_emvdata(AbecsCmdGoxBuilder* builder, const AbecsEmvData* emvData);

/* SPE_TAGLIST. "'tagList' is NULL"; "'tagList' is too long (size: %zu, maximum: %d)" above 128. */
KOR_API void abecs_cmd_gox_builder_taglist(AbecsCmdGoxBuilder* builder, const AbecsTagList* tagList);

/* SPE_TIMEOUT, in seconds. */
KOR_API void abecs_cmd_gox_builder_timeout(AbecsCmdGoxBuilder* builder, uint8_t timeout);

/* Sends GOX and blocks the link on it. ILLEGAL_ARGUMENT "'pinpad' is NULL", "'builder' is NULL"; ILLEGAL_STATE
 * "SPE_WKENC not set" when the method needs it; and what the link raises. */
KOR_API void abecs_cmd_gox(AbecsComm* pinpad, AbecsCmdGoxBuilder* builder);

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
KOR_API int32_t abecs_cmd_gox_response(AbecsComm* pinpad, AbecsRspParamMap* out, char* notification);

KOR_END_DECLS

#endif
