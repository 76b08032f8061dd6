/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GCR_H
#define QUORVEL_ABECS_CMD_GCR_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/data.h"
#include "quorvel/kor/defs.h"
#include "quorvel/kor/result.h"

KOR_BEGIN_DECLS

/*
 * GCR: has the PIN pad capture a card, be it by its stripe, its chip or without contact, and tells what was read. A
 * card may take its time: abecs_cmd_gcr sends the command and blocks the link, abecs_cmd_gcr_response is called until
 * it returns something else than -1 and -2.
 */

/* How the card was read: the protocol's own codes. */
typedef uint8_t AbecsCmdGcrCardType_E;

/* The codes. */
enum {
    ABECS_CMD_GCR_CARD_TYPE_MAGNETIC = 0,
    ABECS_CMD_GCR_CARD_TYPE_ICC_EMV = 3,
    ABECS_CMD_GCR_CARD_TYPE_CTLS_MAGSTRIPE = 5,
    ABECS_CMD_GCR_CARD_TYPE_CTLS_EMV = 6
};

/* How the last reading of a chip ended. */
typedef enum AbecsCmdGcrStatChip_E KOR_ENUM_INT32 {
    ABECS_CMD_GCR_STATCHIP_SUCCESS = 0,
    ABECS_CMD_GCR_STATCHIP_ERROR_FALLBACK = 1,
    ABECS_CMD_GCR_STATCHIP_NOT_SUPPORTED = 2
} AbecsCmdGcrStatChip_E;

/*
 * What is asked for. `acqIdxReq` and `appTypReq` narrow the search in the PIN pad's tables to one acquirer or one type
 * of application, 0 to 99; `amount` is in the smallest unit of the currency, below 10^12; `tabVer` is the version of
 * the tables that the caller knows, at most 10 characters and a NUL; `ctlsOn` allows contactless cards.
 */
typedef struct AbecsCmdGcrData {
    uint8_t acqIdxReq; /* the acquirer */
    uint8_t appTypReq; /* the type of application */
    uint64_t amount;   /* of the sale */
    AbecsDate date;    /* of the sale */
    AbecsTime time;    /* of the sale */
    char tabVer[11];   /* of the tables */
    bool ctlsOn;       /* whether cards are taken without contact */
} AbecsCmdGcrData;

/*
 * What was read. Texts are without trailing blanks; the codes are stored as received.
 *
 * While the link has no PAN working key, tracks and card number are as received, and so are track1Len, track2Len and
 * panLen, whatever the texts hold; track3Len is the length of track3. After abecs_cmd_dwk1 without the link's key that
 * holds too, for tracks and a number that are enciphered.
 *
 * While it has one, tracks and card number are in clear; track1Len and track2Len are those of the clear texts,
 * track3Len is that of the clear card number, and panLen is as received.
 *
 * Of the last four members only those of the acquirer `acqIdx` are written, and none for an acquirer other than 1 and
 * 2: the rest stays as it was.
 */
typedef struct AbecsCmdGcrResponse {
    AbecsCmdGcrCardType_E cardType; /* how the card was read */
    AbecsCmdGcrStatChip_E statChip; /* how the last reading of a chip ended */
    uint8_t appType;                /* type of the application */
    uint8_t acqIdx;                 /* the acquirer's index */
    char recIdx[3];                 /* the record of the AID table */
    uint8_t track1Len;              /* length of track 1 */
    char track1[77];                /* track 1 */
    uint8_t track2Len;              /* length of track 2 */
    char track2[41];                /* track 2 */
    uint8_t track3Len;              /* see above */
    char track3[105];               /* track 3 */
    uint8_t panLen;                 /* length of the card number */
    char pan[20];                   /* the card number */
    uint8_t panSeqNum;              /* its sequence number */
    char appLabel[17];              /* the application's name */
    uint16_t serviceCode;           /* the service code */
    char cardholderName[27];        /* the cardholder's name */
    uint8_t expYear;                /* of the expiry, its last two digits */
    uint8_t expMonth;               /* of the expiry */
    uint8_t expDay;                 /* of the expiry */
    uint8_t extData[30];            /* what the acquirer adds: 29 bytes and a zero */
    uint16_t issuerCountry;         /* the issuer's country, its numeric code */
    __extension__ union {
        struct {                   /* acqIdx 1 */
            char acqRd01Data[33];  /* hexadecimal digits */
            char acqRd01Text1[17]; /* the acquirer's text */
            char acqRd01Text2[17]; /* the acquirer's other text */
        };
        char acqRd02Data[11]; /* acqIdx 2: hexadecimal digits */
    };
} AbecsCmdGcrResponse;

/* The enumerator's name, a constant. RUNTIME_ERROR "Unhandled case" for any other number. */
KOR_API const char* abecs_cmd_gcr_card_type_to_string(AbecsCmdGcrCardType_E cardType);
KOR_API const char* abecs_cmd_gcr_stat_chip_to_string(AbecsCmdGcrStatChip_E statChip);

/*
 * Sends GCR and blocks the link on it; returns OK. `aidRecIds` restricts the search to up to 99 records of the AID
 * table: their ids of four characters (the acquirer's index and the record's) one behind the other; it may be null.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'gcrData' is NULL"; "gcrData->acqIdxReq (%d) is out of range",
 * "gcrData->appTypReq (%d) is out of range" above 99; those of abecs_data_validate_date and abecs_data_validate_time;
 * "AID record ids where supplied and GCR_APPTYPE is not zero", the text being empty or not; "Invalid length for
 * aidRecIds: %zu" for no multiple of 4; "Invalid char at aidRecIds[%zu]: (0x%02X)" for what is no digit or letter; "Too
 * many records"; "Duplicate record ID: %s"; an amount or a `tabVer` that its field does not take. And what the link
 * raises. Where a raise returns, so does this function, with the code that was raised.
 */
KOR_API KorResult_E abecs_cmd_gcr(AbecsComm* pinpad, const AbecsCmdGcrData* gcrData, const char* aidRecIds);

/* Sends GCR with no data at all: the PIN pad takes its defaults. ILLEGAL_ARGUMENT "'pinpad' is NULL"; and what the link
 * raises, returned as above. */
KOR_API KorResult_E abecs_cmd_gcr_empty(AbecsComm* pinpad);

/*
 * Reads the answer. Returns -1 (ABECS_RSP_STAT_ST_PROCESSING) when there is none yet, or three damaged frames have
 * come; -2 (ABECS_RSP_STAT_ST_NOTIFICATION) after a message for the cardholder, stored in `notification` (33 bytes, or
 * null), and in both cases the link stays blocked; else RSP_STAT, the link being free again. `gcrResponse` is filled
 * only when that is 0.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL", "'gcrResponse' is NULL"; ILLEGAL_STATE "%s was not sent yet"; PROTOCOL_ERROR
 * "Unrecognized response" for an answer under six bytes, "(%s) Invalid RSP_ID: %s)" for that of another command; those
 * of abecs_packet_read_rsp_stat and abecs_packet_read_notification; IO_ERROR for a malformed field; those of
 * abecs_pan_decrypt_track while the link has a PAN working key; and what the link raises. After an error the link stays
 * blocked, and `gcrResponse` may hold a part of the answer.
 */
KOR_API int32_t abecs_cmd_gcr_response(AbecsComm* pinpad, AbecsCmdGcrResponse* gcrResponse, char* notification);

KOR_END_DECLS

#endif
