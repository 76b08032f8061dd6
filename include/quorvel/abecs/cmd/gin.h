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
    struct { /* index 0 */
        char mnName[21];
        char model[20];
        char modelDetail[20];
        bool ctlsSup;
        char soVer[21];
        char specVer[5];
        char manVers[17];
        char serNum[21];
    } idx00;
    struct {
        char text1[9];
        char text2[13];
        char text3[14];
        char text4[5];
        char text5[4];
        uint8_t number;
    } idx02;
    struct {
        char text1[7];
        char text2[5];
        char text3[5];
        char text4[4];
        char text5[4];
        char text6[14];
        char text7[5];
        char text8[3];
        bool dukpt;
        uint8_t number;
    } idx03;
    struct {
        char text1[21];
        char text2[14];
        char text3[5];
        char text4[4];
        uint8_t number;
    } idxOther;
} AbecsCmdGinOut;

/*
 * GIN: reads the identification for acquirer index `acqIdx`, 0 to 99, into `out` and returns RSP_STAT; `out` is filled
 * only when that is 0.
 *
 * INDEX_OUT_OF_BOUNDS "Invalid acqIdx: %d (maximum is 99)"; ILLEGAL_ARGUMENT "'out' is NULL", "'pinpad' is NULL";
 * PROTOCOL_ERROR for an answer under six bytes, of another command, with a length other than the layout's, or with a
 * flag that is neither set nor blank; IO_ERROR for a malformed field; and what the link raises.
 */
KOR_API int32_t abecs_cmd_gin(AbecsComm* pinpad, uint8_t acqIdx, AbecsCmdGinOut* out);

KOR_END_DECLS

#endif
