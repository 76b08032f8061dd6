/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_RSP_DAT_ID_H
#define QUORVEL_ABECS_RSP_DAT_ID_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Ids of the parameters in responses. Four families are numbered from 0 to 99; they are given by their first and last
 * members, the id of number n being the first one's plus n.
 */
typedef enum AbecsRspDatId_E KOR_ENUM_INT32 {
    ABECS_RSP_DATID_PP_SERNUM = 0x8001,     /* serial number */
    ABECS_RSP_DATID_PP_PARTNBR = 0x8002,    /* part number */
    ABECS_RSP_DATID_PP_MODEL = 0x8003,      /* model */
    ABECS_RSP_DATID_PP_MNNAME = 0x8004,     /* manufacturer */
    ABECS_RSP_DATID_PP_CAPAB = 0x8005,      /* what the PIN pad can do, a digit each */
    ABECS_RSP_DATID_PP_SOVER = 0x8006,      /* version of the operating system */
    ABECS_RSP_DATID_PP_SPECVER = 0x8007,    /* version of the protocol */
    ABECS_RSP_DATID_PP_MANVERS = 0x8008,    /* version of the manufacturer's part of the application */
    ABECS_RSP_DATID_PP_APPVERS = 0x8009,    /* version of the application */
    ABECS_RSP_DATID_PP_GENVERS = 0x800A,    /* version of an extension */
    ABECS_RSP_DATID_PP_KRNLVER = 0x8010,    /* version of the kernel for chips */
    ABECS_RSP_DATID_PP_CTLSVER = 0x8011,    /* version of the contactless module */
    ABECS_RSP_DATID_PP_MCTLSVER = 0x8012,   /* version of a kernel for contactless cards */
    ABECS_RSP_DATID_PP_VCTLSVER = 0x8013,   /* version of a kernel for contactless cards */
    ABECS_RSP_DATID_PP_AECTLSVER = 0x8014,  /* version of a kernel for contactless cards */
    ABECS_RSP_DATID_PP_DPCTLSVER = 0x8015,  /* version of a kernel for contactless cards */
    ABECS_RSP_DATID_PP_PUREVER = 0x8016,    /* version of a kernel for contactless cards */
    ABECS_RSP_DATID_PP_DSPTXTSZ = 0x8020,   /* size of the display in characters */
    ABECS_RSP_DATID_PP_DSPGRSZ = 0x8021,    /* size of the display in pixels */
    ABECS_RSP_DATID_PP_MFSUP = 0x8022,      /* which media files it takes */
    ABECS_RSP_DATID_PP_MKDESP = 0x8030,     /* master keys for PINs with DES, a digit for each index */
    ABECS_RSP_DATID_PP_MKDESD = 0x8031,     /* master keys for data with DES */
    ABECS_RSP_DATID_PP_MKTDESP = 0x8032,    /* master keys for PINs with triple DES */
    ABECS_RSP_DATID_PP_MKTDESD = 0x8033,    /* master keys for data with triple DES */
    ABECS_RSP_DATID_PP_DKPTDESP = 0x8034,   /* DUKPT keys for PINs with DES */
    ABECS_RSP_DATID_PP_DKPTTDESP = 0x8035,  /* DUKPT keys for PINs with triple DES */
    ABECS_RSP_DATID_PP_DKPTTDESD = 0x8036,  /* DUKPT keys for data with triple DES */
    ABECS_RSP_DATID_PP_EVENT = 0x8040,      /* what has happened: AbecsPpEvent_E */
    ABECS_RSP_DATID_PP_TRK1INC = 0x8041,    /* track 1, masked or as the link deciphers it */
    ABECS_RSP_DATID_PP_TRK2INC = 0x8042,    /* track 2, masked or as the link deciphers it */
    ABECS_RSP_DATID_PP_TRK3INC = 0x8043,    /* track 3, masked or as the link deciphers it */
    ABECS_RSP_DATID_PP_TRACK1 = 0x8044,     /* track 1 */
    ABECS_RSP_DATID_PP_TRACK2 = 0x8045,     /* track 2 */
    ABECS_RSP_DATID_PP_TRACK3 = 0x8046,     /* track 3 */
    ABECS_RSP_DATID_PP_TRK1KSN = 0x8047,    /* serial number of the key of track 1 */
    ABECS_RSP_DATID_PP_TRK2KSN = 0x8048,    /* serial number of the key of track 2 */
    ABECS_RSP_DATID_PP_TRK3KSN = 0x8049,    /* serial number of the key of track 3 */
    ABECS_RSP_DATID_PP_ENCPAN = 0x804A,     /* the card number, enciphered */
    ABECS_RSP_DATID_PP_ENCPANKSN = 0x804B,  /* serial number of its key */
    ABECS_RSP_DATID_PP_KSN = 0x804C,        /* serial number of a DUKPT key */
    ABECS_RSP_DATID_PP_VALUE = 0x804D,      /* what was typed in or chosen */
    ABECS_RSP_DATID_PP_DATAOUT = 0x804E,    /* enciphered data */
    ABECS_RSP_DATID_PP_CARDTYPE = 0x804F,   /* how the card was read */
    ABECS_RSP_DATID_PP_ICCSTAT = 0x8050,    /* how the last reading of a chip ended */
    ABECS_RSP_DATID_PP_AIDTABINFO = 0x8051, /* acquirer, record and type of application */
    ABECS_RSP_DATID_PP_PAN = 0x8052,        /* the card number */
    ABECS_RSP_DATID_PP_PANSEQNO = 0x8053,   /* its sequence number */
    ABECS_RSP_DATID_PP_EMVDATA = 0x8054,    /* EMV data objects */
    ABECS_RSP_DATID_PP_CHNAME = 0x8055,     /* the cardholder's name */
    ABECS_RSP_DATID_PP_GOXRES = 0x8056,     /* the card's first decision, and how the cardholder was verified */
    ABECS_RSP_DATID_PP_PINBLK = 0x8057,     /* the enciphered PIN block */
    ABECS_RSP_DATID_PP_FCXRES = 0x8058,     /* the card's last decision */
    ABECS_RSP_DATID_PP_ISRESULTS = 0x8059,  /* results of the issuer's scripts */
    ABECS_RSP_DATID_PP_BIGRAND = 0x805A,    /* random bytes */
    ABECS_RSP_DATID_PP_LABEL = 0x805B,      /* the application's name */
    ABECS_RSP_DATID_PP_ISSCNTRY = 0x805C,   /* the issuer's country, its numeric code */
    ABECS_RSP_DATID_PP_CARDEXP = 0x805D,    /* expiry of the card, YYMMDD */
    ABECS_RSP_DATID_PP_MFNAME = 0x805E,     /* name of a media file */
    ABECS_RSP_DATID_PP_DEVTYPE = 0x8060,    /* what the card is in: a card, a phone or something else */
    ABECS_RSP_DATID_PP_ENCKEY = 0x8061,     /* an enciphered key */
    ABECS_RSP_DATID_PP_TLRMEM = 0x8062,     /* how much of tables TLR may still bring */
    ABECS_RSP_DATID_PP_ENCKRAND = 0x8063,   /* the random key under the host's RSA key */
    ABECS_RSP_DATID_PP_KSNDESP0 = 0x9000,   /* serial number of DUKPT key 0 for PINs with DES */
    ABECS_RSP_DATID_PP_KSNDESP99 = 0x9063,  /* the same of key 99 */
    ABECS_RSP_DATID_PP_KSNTDESP0 = 0x9100,  /* serial number of DUKPT key 0 for PINs with triple DES */
    ABECS_RSP_DATID_PP_KSNTDESP99 = 0x9163, /* the same of key 99 */
    ABECS_RSP_DATID_PP_KSNTDESD0 = 0x9200,  /* serial number of DUKPT key 0 for data with triple DES */
    ABECS_RSP_DATID_PP_KSNTDESD99 = 0x9263, /* the same of key 99 */
    ABECS_RSP_DATID_PP_TABVER0 = 0x9300,    /* version of the tables of all acquirers */
    ABECS_RSP_DATID_PP_TABVER99 = 0x9363    /* version of acquirer 99's tables */
} AbecsRspDatId_E;

/*
 * The enumerator's name: a constant, but of a numbered id a text that the next call for a numbered id overwrites.
 * RUNTIME_ERROR "Unhandled id: %d\n" for an unknown id.
 */
KOR_API const char* abecs_rsp_dat_id_to_string(AbecsRspDatId_E id);

/*
 * Whether the parameter's value is bytes (true) or text (false). RUNTIME_ERROR "Unhandled id: %d\n" for an unknown id.
 */
KOR_API bool abecs_rsp_dat_id_is_binary(AbecsRspDatId_E id);

KOR_END_DECLS

#endif
