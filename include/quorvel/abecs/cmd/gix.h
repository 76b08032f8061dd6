/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GIX_H
#define QUORVEL_ABECS_CMD_GIX_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/rsp_param_map.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/* What GIX can be asked for: the data ids of the answer. The four families run from 0 to 99. */
typedef enum AbecsCmdGixId_E KOR_ENUM_INT32 {
    ABECS_CMD_GIX_ID_PP_SERNUM = 0x8001,
    ABECS_CMD_GIX_ID_PP_PARTNBR = 0x8002,
    ABECS_CMD_GIX_ID_PP_MODEL = 0x8003,
    ABECS_CMD_GIX_ID_PP_MNNAME = 0x8004,
    ABECS_CMD_GIX_ID_PP_CAPAB = 0x8005,
    ABECS_CMD_GIX_ID_PP_SOVER = 0x8006,
    ABECS_CMD_GIX_ID_PP_SPECVER = 0x8007,
    ABECS_CMD_GIX_ID_PP_MANVERS = 0x8008,
    ABECS_CMD_GIX_ID_PP_APPVERS = 0x8009,
    ABECS_CMD_GIX_ID_PP_GENVERS = 0x800A,
    ABECS_CMD_GIX_ID_PP_KRNLVER = 0x8010,
    ABECS_CMD_GIX_ID_PP_CTLSVER = 0x8011,
    ABECS_CMD_GIX_ID_PP_MCTLSVER = 0x8012,
    ABECS_CMD_GIX_ID_PP_VCTLSVER = 0x8013,
    ABECS_CMD_GIX_ID_PP_AECTLSVER = 0x8014,
    ABECS_CMD_GIX_ID_PP_DPCTLSVER = 0x8015,
    ABECS_CMD_GIX_ID_PP_PUREVER = 0x8016,
    ABECS_CMD_GIX_ID_PP_DSPTXTSZ = 0x8020,
    ABECS_CMD_GIX_ID_PP_DSPGRSZ = 0x8021,
    ABECS_CMD_GIX_ID_PP_MFSUP = 0x8022,
    ABECS_CMD_GIX_ID_PP_MKDESP = 0x8030,
    ABECS_CMD_GIX_ID_PP_MKDESD = 0x8031,
    ABECS_CMD_GIX_ID_PP_MKTDESP = 0x8032,
    ABECS_CMD_GIX_ID_PP_MKTDESD = 0x8033,
    ABECS_CMD_GIX_ID_PP_DKPTDESP = 0x8034,
    ABECS_CMD_GIX_ID_PP_DKPTTDESP = 0x8035,
    ABECS_CMD_GIX_ID_PP_DKPTTDESD = 0x8036,
    ABECS_CMD_GIX_ID_PP_BIGRAND = 0x805A,
    ABECS_CMD_GIX_ID_PP_TLRMEM = 0x8062,
    ABECS_CMD_GIX_ID_PP_KSNDESP0 = 0x9000,
    ABECS_CMD_GIX_ID_PP_KSNDESP99 = 0x9063,
    ABECS_CMD_GIX_ID_PP_KSNTDESP0 = 0x9100,
    ABECS_CMD_GIX_ID_PP_KSNTDESP99 = 0x9163,
    ABECS_CMD_GIX_ID_PP_KSNTDESD0 = 0x9200,
    ABECS_CMD_GIX_ID_PP_KSNTDESD99 = 0x9263,
    ABECS_CMD_GIX_ID_PP_TABVER0 = 0x9300,
    ABECS_CMD_GIX_ID_PP_TABVER99 = 0x9363
} AbecsCmdGixId_E;

/*
 * GIX: asks for the items of `idList` (`idListSize` ids, at most 64; with none the PIN pad chooses) and returns
 * RSP_STAT. When that is 0, `out` holds each item of the answer under its data id (AbecsRspDatId_E), as bytes of its
 * own without a terminator. It is emptied before anything is sent, and empty after any other status and any error but
 * those of the arguments.
 *
 * ILLEGAL_ARGUMENT, in this order and with `out` untouched: "'pinpad' is NULL"; "'idListSize' (%zu) exceeds maximum
 * allowed (64)"; "'idList' is NULL" with a size other than 0; "Invalid enumerator for AbecsCmdGixId_E at index %zu: %d
 * (%02X)" (an id of a family ends this check: the ids behind it are sent as they stand); "'out' is NULL".
 * PROTOCOL_ERROR "(%s) Invalid RSP_ID: %s)" for the answer of another command, "Malformed parameter (expected data
 * length: %hu, available: %hu)" for an item that is longer than the rest of the answer; further those of
 * abecs_rsp_parser_set_packet and abecs_rsp_parser_read_param for a malformed one; and what the link raises.
 */
KOR_API int32_t abecs_cmd_gix(AbecsComm* pinpad, const int32_t* idList, size_t idListSize, AbecsRspParamMap* out);

KOR_END_DECLS

#endif
