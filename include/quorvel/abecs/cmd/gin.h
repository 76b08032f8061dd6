/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GIN_H
#define QUORVEL_ABECS_CMD_GIN_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * The PIN pad's identification for one acquirer index. Which member is filled follows from the index that was asked
 * for: 0, 2 and 3 have layouts of their own, every other index has idxOther. Texts are without trailing blanks.
 */
typedef union AbecsCmdGinOut {
    struct {                  /* index 0 */
        char mnName[21];      /* the manufacturer */
        char model[20];       /* up to the first semicolon of its field */
        char modelDetail[20]; /* from there to the next one, or to the end */
        bool ctlsSup;         /* takes contactless cards */
        char soVer[21];       /* of the operating system */
        char specVer[5];      /* of the protocol */
        char manVers[17];     /* of the manufacturer */
        char serNum[21];
    } idx00;
    struct {            /* index 2 */
        char text1[9];  /* field 1, of 8 characters */
        char text2[13]; /* field 2, of 12 */
        char text3[14]; /* field 3, of 13 */
        char text4[5];  /* field 4, of 4 */
        char text5[4];  /* field 5, of 3 */
        uint8_t number; /* field 6, of 2 digits */
    } idx02;
    struct {            /* index 3 */
        char text1[7];  /* field 1, of 6 characters */
        char text2[5];  /* field 2, of 4 */
        char text3[5];  /* field 3, of 4 */
        char text4[4];  /* field 4, of 3 */
        char text5[4];  /* field 5, of 3 */
        char text6[14]; /* field 6, of 13 */
        char text7[5];  /* field 7, of 4 */
        char text8[3];  /* field 8, of 2 */
        bool dukpt;     /* field 9: T, or a blank */
        uint8_t number; /* field 10, of 2 digits */
    } idx03;
    struct {            /* every other index */
        char text1[21]; /* field 1, of 20 characters */
        char text2[14]; /* field 2, of 13 */
        char text3[5];  /* field 3, of 4 */
        char text4[4];  /* field 4, of 3 */
        uint8_t number; /* field 5, of 2 digits */
    } idxOther;
} AbecsCmdGinOut;

/*
 * GIN: reads the identification for acquirer index `acqIdx`, 0 to 99, into `out` and returns RSP_STAT; `out` is filled
 * only when that is 0. After an error in a field of the answer it holds the fields before that one; a text at fault
 * holds what was received of it, or nothing, and everything else is as it was.
 *
 * INDEX_OUT_OF_BOUNDS "Invalid acqIdx: %d (maximum is 99)"; ILLEGAL_ARGUMENT "'out' is NULL", "'pinpad' is NULL";
 * PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes, "(%s) Invalid RSP_ID: %s)" for that of another
 * command, "Invalid RSP_LEN1 for GIN_ACQIDX == 0 (expected 100, read: %u)" and, for every other index, "Invalid
 * RSP_LEN1 for GIN_ACQIDX == 02 (expected 42, read: %u)" for one of another length, "Invalid value for GIN_CTLSSUP:
 * 0x%02X" and "Invalid value for GIN_DUKPT: 0x%02X" for a flag that is neither set nor blank; those of
 * abecs_packet_read_rsp_stat; IO_ERROR for a malformed field; and what the link raises.
 */
KOR_API int32_t abecs_cmd_gin(AbecsComm* pinpad, uint8_t acqIdx, AbecsCmdGinOut* out);

KOR_END_DECLS

#endif
