/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_SPE_ID_H
#define QUORVEL_ABECS_SPE_ID_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/* Ids of the parameters in commands. */
typedef enum AbecsSpeId_E KOR_ENUM_INT32 {
    ABECS_SPE_ID_IDLIST = 0x0001,   /* ids of what GIX is to tell */
    ABECS_SPE_ID_MTHDPIN = 0x0002,  /* how a PIN is enciphered: AbecsSpeMthdPin_E */
    ABECS_SPE_ID_MTHDDAT = 0x0003,  /* how data are enciphered: AbecsSpeMthdDat_E */
    ABECS_SPE_ID_TAGLIST = 0x0004,  /* tags whose values are to be in the answer */
    ABECS_SPE_ID_EMVDATA = 0x0005,  /* EMV data objects */
    ABECS_SPE_ID_CEXOPT = 0x0006,   /* which events CEX waits for */
    ABECS_SPE_ID_TRACKS = 0x0007,   /* which tracks GTK is to give */
    ABECS_SPE_ID_OPNDIG = 0x0008,   /* how many digits of the card number stay open */
    ABECS_SPE_ID_KEYIDX = 0x0009,   /* index of the key in the PIN pad */
    ABECS_SPE_ID_WKENC = 0x000A,    /* a working key under its master key */
    ABECS_SPE_ID_MSGIDX = 0x000B,   /* index of one of the PIN pad's own texts */
    ABECS_SPE_ID_TIMEOUT = 0x000C,  /* in seconds */
    ABECS_SPE_ID_MINDIG = 0x000D,   /* the least digits that are typed in */
    ABECS_SPE_ID_MAXDIG = 0x000E,   /* the most digits that are typed in */
    ABECS_SPE_ID_DATAIN = 0x000F,   /* data to be enciphered */
    ABECS_SPE_ID_ACQREF = 0x0010,   /* the acquirer's index */
    ABECS_SPE_ID_APPTYPE = 0x0011,  /* types of application */
    ABECS_SPE_ID_AIDLIST = 0x0012,  /* records of the AID table */
    ABECS_SPE_ID_AMOUNT = 0x0013,   /* in the currency's smallest unit */
    ABECS_SPE_ID_CASHBACK = 0x0014, /* in the currency's smallest unit */
    ABECS_SPE_ID_TRNDATE = 0x0015,  /* the transaction's date, YYMMDD */
    ABECS_SPE_ID_TRNTIME = 0x0016,  /* the transaction's time, HHMMSS */
    ABECS_SPE_ID_GCXOPT = 0x0017,   /* options of GCX */
    ABECS_SPE_ID_GOXOPT = 0x0018,   /* options of GOX */
    ABECS_SPE_ID_FCXOPT = 0x0019,   /* options of FCX */
    ABECS_SPE_ID_TRMPAR = 0x001A,   /* the terminal's risk management */
    ABECS_SPE_ID_DSPMSG = 0x001B,   /* a text for the display */
    ABECS_SPE_ID_ARC = 0x001C,      /* the acquirer's response code */
    ABECS_SPE_ID_IVCBC = 0x001D,    /* what a chain of blocks starts from */
    ABECS_SPE_ID_MFNAME = 0x001E,   /* name of a media file */
    ABECS_SPE_ID_MFINFO = 0x001F,   /* size, CRC and type of a media file */
    ABECS_SPE_ID_MNUOPT = 0x0020,   /* an option of a menu */
    ABECS_SPE_ID_TRNTYPE = 0x0021,  /* type of the transaction */
    ABECS_SPE_ID_TRNCURR = 0x0022,  /* the currency's numeric code */
    ABECS_SPE_ID_PANMASK = 0x0023,  /* how many digits of a card number come in clear */
    ABECS_SPE_ID_PBKMOD = 0x0024,   /* modulus of the host's RSA key */
    ABECS_SPE_ID_PBKEXP = 0x0025    /* public exponent of the host's RSA key */
} AbecsSpeId_E;

KOR_END_DECLS

#endif
