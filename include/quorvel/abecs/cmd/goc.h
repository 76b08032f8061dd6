/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GOC_H
#define QUORVEL_ABECS_CMD_GOC_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * GOC: after GCR has found a chip, runs the card's application up to its first decision: authentication, cardholder
 * verification (which may take a PIN), risk management and the first cryptogram. The cardholder may take time:
 * abecs_cmd_goc sends the command and blocks the link, abecs_cmd_goc_response is called until it returns something
 * else than -1 and -2.
 */

/* Methods of PIN encryption, the codes of AbecsSpeMthdPin_E. */
typedef enum AbecsCmdGocMethod_E KOR_ENUM_INT32 {
    ABECS_CMD_GOC_METHOD_MK_WK_DES = 0,
    ABECS_CMD_GOC_METHOD_MK_WK_TDES = 1,
    ABECS_CMD_GOC_METHOD_DUKPT_DES = 2,
    ABECS_CMD_GOC_METHOD_DUKPT_TDES = 3
} AbecsCmdGocMethod_E;

/*
 * What is asked for. A text ends with its NUL or, where it has none, with its member; one that is longer than its
 * field, be it by tags that are not announced, is refused. A shorter one of hexadecimal digits is filled up at its
 * start with pairs "30". Amounts are in the smallest unit of the currency, below 10^12.
 */
typedef struct AbecsCmdGocData {
    uint64_t amount;            /* of the sale */
    uint64_t cashback;          /* paid out in cash */
    uint8_t exclist;            /* 1 when the card is on an exception list, else 0 */
    bool connect;               /* the acquirer can be reached */
    AbecsCmdGocMethod_E method; /* for a PIN that the acquirer verifies */
    uint8_t keyidx;             /* 0 to 99 */
    char wkenc[33];   /* hexadecimal: the working key under its master key, for the methods that have one; what stands
                         behind 32 digits does not count */
    bool riskman;     /* the terminal manages the risk, with what follows */
    char flrlimit[9]; /* 8 digits, hexadecimal: the floor limit */
    uint8_t tpbrs;    /* biased random selection: target percentage, 0 to 99 */
    char thrbrs[9];   /* 8 digits, hexadecimal: its threshold */
    uint8_t mtpbrs;   /* its maximum target percentage, 0 to 99 */
    union {           /* by the acquirer that GCR has told; sent for 1 and 2 only */
        struct {
            uint8_t transactionType; /* 0 to 99 */
            bool flag;
        } acqpr01;
        struct {
            char data[33]; /* up to 32 characters, without carriage returns */
        } acqpr02;
    } acqpr;
    uint16_t tags1len; /* bytes in tags1, 0 to 128 */
    char tags1[257];   /* hexadecimal: tags whose values are to be in the answer */
    uint16_t tags2len; /* bytes in tags2, 0 to 128 */
    char tags2[257];   /* hexadecimal: further tags, for when a PIN was taken to be verified by the acquirer */
} AbecsCmdGocData;

/* What the card has decided; the codes are stored as received. */
typedef struct AbecsCmdGocResponse {
    uint8_t decision;         /* approved, declined or to be asked of the acquirer: the PIN pad's code */
    bool signature;           /* asked for */
    bool pinOffline;          /* the card has verified a PIN */
    uint8_t pinOfflineErrors; /* wrong PINs entered for the card */
    bool pinBlocked;          /* the last wrong PIN has blocked it */
    bool pinOnline;           /* pinBlock has a PIN, enciphered, and ksn the serial number of a DUKPT key */
    uint8_t pinBlock[16];     /* hexadecimal digits, without a NUL */
    uint8_t ksn[20];          /* hexadecimal digits, without a NUL */
    uint16_t emvDataLen;      /* bytes in emvData */
    uint8_t emvData[512];     /* the values of the tags */
} AbecsCmdGocResponse;

/*
 * Sends GOC and blocks the link on it. `gcrAcqIdx` is the acquirer that GCR has told.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "'gcrAcqIdx' is too big (max: 99, requested: %d)"; "'gocData' is
 * NULL"; "invalid value for gocData->exclist: %d"; "Invalid enumerator for %s: %d"; "invalid value for gocData->keyidx:
 * %d", "...tpbrs: %d", "...mtpbrs: %d"; for acquirer 1 "invalid value for gocData->acqpr.acqpr01.transactionType (max:
 * 99, requested: %d)"; "invalid value for gocData->tags1len: %d", "...tags2len: %d". Then, field by field, "Number
 * length (%zu) is greater than field length (%zu)" for an amount from 10^12 on and "'i' (%llu) is too long (maximum:
 * 9999999999999" from 10^13 on; "Invalid hex byte at index %zu"; "Invalid character (0x%02X) at position %zu"; "Field
 * does not have enough room for data" for a text that is too long. Nothing is sent then. And what the link raises.
 */
KOR_API void abecs_cmd_goc(AbecsComm* pinpad, uint8_t gcrAcqIdx, const AbecsCmdGocData* gocData);

/*
 * Reads the answer. Returns -1 (ABECS_RSP_STAT_ST_PROCESSING) when there is none yet, or three damaged frames have
 * come; -2 (ABECS_RSP_STAT_ST_NOTIFICATION) after a message for the cardholder, stored in `notification` (33 bytes, or
 * null), and in both cases the link stays blocked; else RSP_STAT, the link being free again. `gocResponse` is filled
 * only when that is 0.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL", "'gocResponse' is NULL"; ILLEGAL_STATE "%s was not sent yet"; PROTOCOL_ERROR
 * "Unrecognized response" for an answer under six bytes, "(%s) Invalid RSP_ID: %s)" for that of another command; those
 * of abecs_packet_read_notification; IO_ERROR for a malformed field; ILLEGAL_ARGUMENT for more than 512 bytes of EMV
 * data; and what the link raises. An error leaves the blocked state as it is, and in `gocResponse` what had been read
 * by then; emvDataLen changes with emvData only.
 */
KOR_API int32_t abecs_cmd_goc_response(AbecsComm* pinpad, AbecsCmdGocResponse* gocResponse, char* notification);

KOR_END_DECLS

#endif
