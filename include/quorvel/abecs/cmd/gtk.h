/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GTK_H
#define QUORVEL_ABECS_CMD_GTK_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/rsp_param_map.h"
#include "quorvel/abecs/spe_mthd_dat.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/* An enciphered working key: `size` bytes of `data`. */
typedef struct AbecsCmdGtkWkEnc {
    uint32_t size;    /* how many bytes */
    uint8_t data[16]; /* the first `size` of them count */
} AbecsCmdGtkWkEnc;

/* A public exponent. */
typedef struct AbecsCmdGtkPbkExp {
    uint32_t size;   /* how many bytes */
    uint8_t data[3]; /* the first `size` of them count */
} AbecsCmdGtkPbkExp;

/* An enciphered card number. */
typedef struct AbecsCmdGtkEncPan {
    uint32_t size;    /* how many bytes */
    uint8_t data[16]; /* the first `size` of them count */
} AbecsCmdGtkEncPan;

/* Track 1, in clear or enciphered. */
typedef struct AbecsCmdGtkTrack1 {
    uint32_t size;    /* how many bytes */
    uint8_t data[88]; /* the first `size` of them count */
} AbecsCmdGtkTrack1;

/* Track 2, in clear or enciphered. */
typedef struct AbecsCmdGtkTrack2 {
    uint32_t size;    /* how many bytes */
    uint8_t data[28]; /* the first `size` of them count */
} AbecsCmdGtkTrack2;

/* Track 3, in clear or enciphered. */
typedef struct AbecsCmdGtkTrack3 {
    uint32_t size;    /* how many bytes */
    uint8_t data[60]; /* the first `size` of them count */
} AbecsCmdGtkTrack3;

/* The serial number of a DUKPT key. */
typedef struct AbecsCmdGtkKsn {
    uint32_t size;    /* how many bytes */
    uint8_t data[10]; /* the first `size` of them count */
} AbecsCmdGtkKsn;

/* The random key under the host's RSA key. */
typedef struct AbecsCmdGtkEncKrand {
    uint32_t size;     /* how many bytes */
    uint8_t data[256]; /* the first `size` of them count */
} AbecsCmdGtkEncKrand;

/*
 * GTK: asks for the tracks and the number of the card that was read last, in clear or enciphered. The request is put
 * together in a builder: it is sent as often as the caller likes, and each parameter can be set once between two
 * resets. Which ones are needed or refused follows from the method, so that is set before what depends on it.
 *
 * Setters raise ILLEGAL_ARGUMENT "'builder' is NULL"; those of what depends on the method, ILLEGAL_STATE "SPE_MTHDDAT
 * not set yet"; then the errors given with them, ILLEGAL_ARGUMENT where no code is; then ILLEGAL_STATE "%s already set"
 * with the parameter's name; MALLOC_ERROR. After an error the builder is as it was.
 */
typedef struct AbecsCmdGtkBuilder AbecsCmdGtkBuilder;

/* An empty builder; the caller's, to abecs_cmd_gtk_builder_delete. MALLOC_ERROR. */
KOR_API AbecsCmdGtkBuilder* abecs_cmd_gtk_builder_new(void);

/* Empties the builder. ILLEGAL_ARGUMENT "'builder' is NULL". */
KOR_API void abecs_cmd_gtk_builder_reset(AbecsCmdGtkBuilder* builder);

/* Frees the builder and sets the variable to none; none is ignored. Never raises. */
KOR_API void abecs_cmd_gtk_builder_delete(AbecsCmdGtkBuilder** builder);

/* SPE_TRACKS, which of the tracks 1, 2 and 3 and the card number are wanted: four digits. "'tracks' is NULL"; "Invalid
 * length for 'tracks' (expected: 4, requested: %zu)"; "SPE_TRACKS: Invalid N field". */
KOR_API void abecs_cmd_gtk_builder_tracks(AbecsCmdGtkBuilder* builder, const char* tracks);

/* SPE_MTHDDAT, how they are enciphered; without it they come in clear. "Invalid enumerator for %s: %d" with
 * "AbecsSpeMthdDat_E". */
KOR_API void abecs_cmd_gtk_builder_mthd_dat(AbecsCmdGtkBuilder* builder, AbecsSpeMthdDat_E mthdDat);

/* SPE_IVCBC, what the chain of blocks starts from: 8 bytes. For the methods of CBC, which do without it too.
 * ILLEGAL_STATE "SPE_MTHDDAT (%s) does not uses SPE_IVCBC"; "'ivCbc' is NULL". */
KOR_API void abecs_cmd_gtk_builder_iv_cbc(AbecsCmdGtkBuilder* builder, const uint8_t* ivCbc);

/* SPE_OPNDIG, how many digits of the card number stay open: 0, 2, 4, 6 or 8. "Invalid enumerator for %s: %d" with
 * "SPE_OPNDIG". */
KOR_API void abecs_cmd_gtk_builder_opn_dig(AbecsCmdGtkBuilder* builder, int32_t opnDig);

/* SPE_KEYIDX, the index of the key in the PIN pad, 0 to 99. Needed by all methods but TDES_RANDOM. ILLEGAL_STATE
 * "SPE_MTHDDAT (%s) does not use SPE_KEYIDX"; "Invalid key index (max: 99, requested: %d)". */
KOR_API void abecs_cmd_gtk_builder_key_idx(AbecsCmdGtkBuilder* builder, uint8_t keyIdx);

/* SPE_WKENC, the working key under its master key: 8 bytes for MK_WK_DES, 16 for MK_WK_TDES, which need it.
 * ILLEGAL_STATE "SPE_MTHDDAT (%s) does not uses SPE_WKENC"; "'wkEnc' is NULL"; "Invalid size of SPE_WKENC (expected:
 * %zu, requested: %zu)". */
KOR_API void abecs_cmd_gtk_builder_wk_enc(AbecsCmdGtkBuilder* builder, const AbecsCmdGtkWkEnc* wkEnc);

/*
 * SPE_PBKMOD and SPE_PBKEXP, the host's RSA key under which the PIN pad returns the random key that it has used: the
 * 256 bytes of the modulus and up to 3 of the public exponent. Needed by the methods TDES_RANDOM. ILLEGAL_STATE
 * "SPE_MTHDDAT (%s) does not use SPE_not SPE_PBKMOD", "SPE_MTHDDAT (%s) does not use SPE_not SPE_PBKEXP"; "'pbkMod' is
 * NULL", "'pbkExp' is NULL"; "Invalid size for SPE_PBKEXP (max: 3, requested: %zu)".
 */
KOR_API void abecs_cmd_gtk_builder_pbk_mod(AbecsCmdGtkBuilder* builder, const uint8_t* pbkMod);
KOR_API void abecs_cmd_gtk_builder_pbk_exp(AbecsCmdGtkBuilder* builder, const AbecsCmdGtkPbkExp* pbkExp);

/*
 * Sends GTK and reads the answer. Returns RSP_STAT. When that is 0, `out` holds each item of the answer under its data
 * id (AbecsRspDatId_E), as bytes of its own without a terminator. It is emptied before anything is sent, and empty
 * after any other status and any error but those of the arguments.
 *
 * ILLEGAL_ARGUMENT, nothing being sent and `out` untouched: "'pinpad' is NULL", "'builder' is NULL", "'out' is NULL";
 * "Missing SPE_KEYIDX (SPE_MTHDDAT: %s)", "Missing SPE_WKENC (SPE_MTHDDAT: %s)", "Missing %s (SPE_MTHDDAT: %s)" with
 * SPE_PBKMOD or SPE_PBKEXP, when the method needs what was not set. PROTOCOL_ERROR "(%s) Invalid RSP_ID: %s)" for the
 * answer of another command, "Malformed parameter (expected data length: %hu, available: %hu)" for an item that is
 * longer than the rest of the answer; further those of abecs_rsp_parser_set_packet and abecs_rsp_parser_read_param for
 * a malformed one; and what the link raises.
 */
KOR_API int32_t abecs_cmd_gtk(AbecsComm* pinpad, AbecsCmdGtkBuilder* builder, AbecsRspParamMap* out);

/*
 * The items of an answer: the enciphered card number, the tracks, the serial numbers of the keys with which they were
 * enciphered, and the random key under the host's. Each copies the item into `out` and returns that; or null, with
 * `out` untouched, when the answer does not have it.
 *
 * ILLEGAL_ARGUMENT "'rspParams' is NULL", "'out' is NULL"; PROTOCOL_ERROR "'Parameter size violation for %s (size: %zu,
 * max: %zu)" for one that `out` has no room for: out->size then tells the size it has, more than out->data holds, which
 * is as it was.
 */
KOR_API AbecsCmdGtkEncPan* abecs_cmd_gtk_response_enc_pan(const AbecsRspParamMap* rspParams, AbecsCmdGtkEncPan* out);
KOR_API AbecsCmdGtkTrack1* abecs_cmd_gtk_response_track1(const AbecsRspParamMap* rspParams, AbecsCmdGtkTrack1* out);
KOR_API AbecsCmdGtkTrack2* abecs_cmd_gtk_response_track2(const AbecsRspParamMap* rspParams, AbecsCmdGtkTrack2* out);
KOR_API AbecsCmdGtkTrack3* abecs_cmd_gtk_response_track3(const AbecsRspParamMap* rspParams, AbecsCmdGtkTrack3* out);
KOR_API AbecsCmdGtkKsn* abecs_cmd_gtk_response_trk1_ksn(const AbecsRspParamMap* rspParams, AbecsCmdGtkKsn* out);
KOR_API AbecsCmdGtkKsn* abecs_cmd_gtk_response_trk2_ksn(const AbecsRspParamMap* rspParams, AbecsCmdGtkKsn* out);
KOR_API AbecsCmdGtkKsn* abecs_cmd_gtk_response_trk3_ksn(const AbecsRspParamMap* rspParams, AbecsCmdGtkKsn* out);
KOR_API AbecsCmdGtkKsn* abecs_cmd_gtk_response_enc_pan_ksn(const AbecsRspParamMap* rspParams, AbecsCmdGtkKsn* out);
KOR_API AbecsCmdGtkEncKrand* abecs_cmd_gtk_response_enc_krand(const AbecsRspParamMap* rspParams,
                                                              AbecsCmdGtkEncKrand* out);

KOR_END_DECLS

#endif
