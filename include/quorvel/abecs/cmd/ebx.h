/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_EBX_H
#define QUORVEL_ABECS_CMD_EBX_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/rsp_param_map.h"
#include "quorvel/abecs/spe_mthd_dat.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * EBX: has the PIN pad encipher data by a chosen method, under a working key that is sent along or with DUKPT. The
 * request is put together in a builder: it is sent as often as the caller likes, and each parameter can be set once
 * between two resets.
 *
 * Setters raise ILLEGAL_ARGUMENT "'builder' is NULL", then the errors given with them, then ILLEGAL_STATE "%s already
 * set" with the parameter's name; MALLOC_ERROR. After an error the builder is as it was.
 *
 * Where an error names the method and it is none of AbecsSpeMthdDat_E, the error is that of
 * abecs_spe_mthd_dat_to_string instead.
 */
typedef struct AbecsCmdEbxBuilder AbecsCmdEbxBuilder;

/* A builder, reset with the arguments; the caller's, to abecs_cmd_ebx_builder_delete. Errors: those of the reset;
 * MALLOC_ERROR. */
KOR_API AbecsCmdEbxBuilder* abecs_cmd_ebx_builder_new(const uint8_t* data, size_t szData, AbecsSpeMthdDat_E mthdDat,
                                                      uint8_t keyIdx);

/*
 * Leaves nothing but SPE_DATAIN, the `szData` bytes to encipher (8 to 256, whole blocks of 8), SPE_MTHDDAT, the method,
 * and SPE_KEYIDX, the index of the key in the PIN pad. The methods with a random key are not for EBX. A number up to 51
 * that is no method is refused only later, where something has to be known about it.
 *
 * ILLEGAL_ARGUMENT, in this order, with the builder as it was: "'builder' is NULL"; "'data' is NULL"; "Invalid
 * 'szData': %zu (min: 1, max: %d)"; "Invalid 'szData': %zu (it must be a multiple of 8)"; "Unsupported 'mthdDat': %s"
 * above 51; "Invalid 'keyIdx': %d (min: 0, max: 99)". A method below 0 does not fit its field. After that, and
 * after a MALLOC_ERROR, the builder is to be reset again before it is sent.
 */
KOR_API void abecs_cmd_ebx_builder_reset(AbecsCmdEbxBuilder* builder, const uint8_t* data, size_t szData,
                                         AbecsSpeMthdDat_E mthdDat, uint8_t keyIdx);

/* Frees the builder and sets the variable to none; none is ignored. Never raises. */
KOR_API void abecs_cmd_ebx_builder_delete(AbecsCmdEbxBuilder** builder);

/*
 * SPE_WKENC, the working key under the master key: 8 bytes for the MK_WK_DES methods, 16 for the MK_WK_TDES ones, which
 * need it; the others refuse it. ILLEGAL_STATE "current SPE_MTHDDAT (%s) does not accept SPE_WKENC"; ILLEGAL_ARGUMENT
 * "'wkEnc' is NULL"; RUNTIME_ERROR "Missing case" for a number up to 11 that is no method; ILLEGAL_ARGUMENT "Invalid
 * 'szWkEnc': %zu (expected: %zu)".
 */
KOR_API void abecs_cmd_ebx_builder_wkenc(AbecsCmdEbxBuilder* builder, const uint8_t* wkEnc, size_t szWkEnc);

/*
 * SPE_IVCBC, the 8 bytes that a chain begins from, for the CBC methods; without it the PIN pad has its own.
 * ILLEGAL_STATE "current SPE_MTHDDAT (%s) does not accept SPE_IVCBC"; ILLEGAL_ARGUMENT "'ivCbc' is NULL".
 */
KOR_API void abecs_cmd_ebx_builder_ivcbc(AbecsCmdEbxBuilder* builder, const uint8_t* ivCbc);

/*
 * Sends EBX and returns RSP_STAT. When that is 0, `out` holds each item of the answer under its data id
 * (AbecsRspDatId_E), as bytes of its own without a terminator. It is emptied once the arguments are found to be there,
 * and empty after any other status and any later error.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL", "'builder' is NULL", "'out' is NULL", with `out` untouched; ILLEGAL_STATE
 * "Missing parameter SPE_WKENC (required due to SPE_MTHDDAT == %s)" for a number up to 11; PROTOCOL_ERROR "(%s) Invalid
 * RSP_ID: %s)" for the answer of another command, "Malformed parameter (expected data length: %hu, available: %hu)" for
 * an item that is longer than the rest of the answer; further those of abecs_rsp_parser_set_packet and
 * abecs_rsp_parser_read_param for a malformed one; and what the link raises.
 */
KOR_API int32_t abecs_cmd_ebx(AbecsComm* pinpad, AbecsCmdEbxBuilder* builder, AbecsRspParamMap* out);

/*
 * The enciphered data (PP_DATAOUT) and the serial number of a DUKPT key (PP_KSN); the map's, null when the answer had
 * none. These are bytes, among which there may be zeros: their number is the size of the map's value. ILLEGAL_ARGUMENT
 * "'responseParams' is NULL".
 */
KOR_API const char* abecs_cmd_ebx_response_get_dataout(const AbecsRspParamMap* responseParams);
KOR_API const char* abecs_cmd_ebx_response_get_ksn(const AbecsRspParamMap* responseParams);

KOR_END_DECLS

#endif
