/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_RSP_STAT_H
#define QUORVEL_ABECS_RSP_STAT_H

#include <stdint.h>

#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Response status. The two below 0 never travel: they are what a blocking command's response function returns when no
 * answer has come yet, and when a notification has.
 */
typedef enum AbecsRspStat_E KOR_ENUM_INT32 {
    ABECS_RSP_STAT_ST_NOTIFICATION = -2, /* a message for the cardholder or the operator has come */
    ABECS_RSP_STAT_ST_PROCESSING = -1,   /* no answer yet */
    ABECS_RSP_STAT_ST_OK = 0,            /* done; for keys, ENTER */
    ABECS_RSP_STAT_ST_NOSEC = 3,         /* an enciphered command, but there is no encrypted session at that end */
    ABECS_RSP_STAT_ST_F1 = 4,            /* F1 was pressed */
    ABECS_RSP_STAT_ST_F2 = 5,            /* F2 was pressed */
    ABECS_RSP_STAT_ST_F3 = 6,            /* F3 was pressed */
    ABECS_RSP_STAT_ST_F4 = 7,            /* F4 was pressed */
    ABECS_RSP_STAT_ST_BACKSP = 8,        /* CLEAR was pressed */
    ABECS_RSP_STAT_ST_ERRPKTSEC = 9,     /* could not be deciphered, or came plain inside an encrypted session */
    ABECS_RSP_STAT_ST_INVCALL = 10,      /* the command is unknown, or out of order */
    ABECS_RSP_STAT_ST_INVPARM = 11,      /* a parameter is wrong */
    ABECS_RSP_STAT_ST_TIMEOUT = 12,      /* the cardholder did nothing for too long */
    ABECS_RSP_STAT_ST_CANCEL = 13,       /* the cardholder pressed CANCEL */
    ABECS_RSP_STAT_ST_MANDAT = 19,       /* a parameter is missing */
    ABECS_RSP_STAT_ST_TABVERDIF = 20,    /* the PIN pad's tables have another version than you named */
    ABECS_RSP_STAT_ST_TABERR = 21,       /* the tables could not be stored, or a load is out of order */
    ABECS_RSP_STAT_ST_INTERR = 40,    /* the PIN pad failed inside; and what a function returns where a raise returns */
    ABECS_RSP_STAT_ST_MCDATAERR = 41, /* the stripe could not be read */
    ABECS_RSP_STAT_ST_ERRKEY = 42,    /* the PIN pad has no key of that kind at that index */
    ABECS_RSP_STAT_ST_NOCARD = 43,    /* no card where one must be */
    ABECS_RSP_STAT_ST_PINBUSY = 44,   /* too many PINs in too short a time */
    ABECS_RSP_STAT_ST_RSPOVRFL = 45,  /* the answer would be too long */
    ABECS_RSP_STAT_ST_ERRCRYPT = 46,  /* a cryptographic check failed */
    ABECS_RSP_STAT_ST_NOSAM = 51,     /* there is no security module in that slot */
    ABECS_RSP_STAT_ST_DUMBCARD = 60,  /* the chip does not answer */
    ABECS_RSP_STAT_ST_ERRCARD = 61,   /* talking to the chip failed */
    ABECS_RSP_STAT_ST_CARDINVALIDAT = 67, /* the card has been invalidated */
    ABECS_RSP_STAT_ST_CARDPROBLEMS = 68,  /* the card does not work as it should */
    ABECS_RSP_STAT_ST_CARDINVDATA = 69,   /* the card holds wrong data */
    ABECS_RSP_STAT_ST_CARDAPPNAV = 70,    /* no application that both sides know */
    ABECS_RSP_STAT_ST_CARDAPPNAUT = 71,   /* the application may not be used for this sale */
    ABECS_RSP_STAT_ST_ERRFALLBACK = 76,   /* the chip failed in a way that allows the stripe */
    ABECS_RSP_STAT_ST_INVAMOUNT = 77,     /* the amount cannot be used */
    ABECS_RSP_STAT_ST_ERRMAXAID = 78,     /* more applications than the PIN pad can take in */
    ABECS_RSP_STAT_ST_CARDBLOCKED = 79,   /* the card is blocked */
    ABECS_RSP_STAT_ST_CTLSMULTIPLE = 80,  /* more than one card in the field */
    ABECS_RSP_STAT_ST_CTLSCOMMERR = 81,   /* talking to the card failed */
    ABECS_RSP_STAT_ST_CTLSINVALIDAT = 82, /* the card has been invalidated */
    ABECS_RSP_STAT_ST_CTLSPROBLEMS = 83,  /* the card does not work as it should */
    ABECS_RSP_STAT_ST_CTLSAPPNAV = 84,    /* no application that both sides know */
    ABECS_RSP_STAT_ST_CTLSAPPNAUT = 85,   /* the application may not be used for this sale */
    ABECS_RSP_STAT_ST_CTLSEXTCVM = 86,    /* the cardholder must confirm on the phone first */
    ABECS_RSP_STAT_ST_CTLSIFCHG = 87,     /* the card wants another interface */
    ABECS_RSP_STAT_ST_MFNFOUND = 100,     /* no media file of that name */
    ABECS_RSP_STAT_ST_MFERRFMT = 101,     /* a kind of file that the PIN pad does not take */
    ABECS_RSP_STAT_ST_MFERR = 102         /* the load failed: out of order, too long, or damaged on the way */
} AbecsRspStat_E;

/* The enumerator's name, a constant. RUNTIME_ERROR "Unhandled AbecsRspStat_E: %d\n" for any other number. */
KOR_API const char* abecs_rsp_stat_to_string(AbecsRspStat_E stat);

KOR_END_DECLS

#endif
