/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_GEN_H
#define QUORVEL_ABECS_CMD_GEN_H

#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/wk_pan.h"
#include "quorvel/kor/defs.h"
#include "quorvel/kor/result.h"

KOR_BEGIN_DECLS

/*
 * GEN: functions that have no command of their own, each named by a group and a sub-command: 02/K3 tells which keys
 * there are, 03/02 and 04/04 read the card's data objects, 03/03 enciphers data, and 04/01 to 04/03 talk to the chips
 * in the PIN pad's slots.
 *
 * 1. All but 04/03 send, read the answer and return RSP_STAT; the output is filled when that is 0. After an error in
 *    the answer it may be filled in part, but for a length: that is 0 then, or both it and what it counts are as they
 *    were or as received.
 * 2. ILLEGAL_ARGUMENT, with nothing sent: "'pinpad' is NULL", then what is said with each function, in that order, then
 *    what a text does not take: "Invalid hex byte at index %zu" and, for more characters than the field has, or than a
 *    length tells, "Field does not have enough room for data". A text ends with its NUL or, where it has none, with its
 *    member. Then what the link raises.
 * 3. PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes, "(%s) Invalid RSP_ID: %s)" for that of
 *    another command, and what is said with each function; IO_ERROR for a malformed field.
 * 4. Texts of hexadecimal digits are sent in upper case and come as the PIN pad sends them. One that is shorter than
 *    its field is filled up in front with pairs "30", and so leading pairs "30" of an answer are taken for filling and
 *    dropped: a text that is shorter than its length tells has lost so many.
 * 5. Slot 0 is the chip reader, the others up to 8 hold security modules.
 */

/* What is done with a slot's power. */
typedef enum AbecsCmdGen0401Oper_E KOR_ENUM_INT32 {
    ABECS_CMD_GEN_04_01_OPER_1 = 1,
    ABECS_CMD_GEN_04_01_OPER_2 = 2,
    ABECS_CMD_GEN_04_01_OPER_3 = 3,
    ABECS_CMD_GEN_04_01_OPER_4 = 4
} AbecsCmdGen0401Oper_E;

/* Which keys 02/K3 asks for: those of one type (0 to 3) and use (0, 1) at the indexes from `idxIni` to `idxEnd` (99).
 */
typedef struct AbecsCmdGen02K3CmdData {
    uint8_t keyType; /* 0 to 3 */
    uint8_t keyUse;  /* 0 or 1 */
    uint8_t idxIni;  /* the first index */
    uint8_t idxEnd;  /* the last index */
} AbecsCmdGen02K3CmdData;

/* Data objects, in hexadecimal. */
typedef struct AbecsCmdGenTagsOut {
    uint16_t len;   /* in digits from 03/02, in bytes from 04/04 */
    char data[513]; /* the objects */
} AbecsCmdGenTagsOut;

/* Up to 16 blocks of 8 bytes, in hexadecimal. */
typedef struct AbecsCmdGen0303Data {
    uint32_t size;  /* in digits: a multiple of 16 */
    char data[257]; /* the blocks */
} AbecsCmdGen0303Data;

/* What 03/03 is to encipher. */
typedef struct AbecsCmdGen0303CmdData {
    uint8_t idx;               /* of the key in the PIN pad, 0 to 99 */
    AbecsCmdGen0303Data input; /* in clear */
} AbecsCmdGen0303CmdData;

/* What 03/03 has enciphered. */
typedef struct AbecsCmdGen0303RspData {
    char ksn[21];     /* the key's serial number, 20 digits */
    uint32_t dataLen; /* in digits */
    char data[257];   /* enciphered */
} AbecsCmdGen0303RspData;

/* Which slot 04/01 switches, and how. */
typedef struct AbecsCmdGen0401CmdData {
    AbecsCmdGen0401Oper_E oper; /* what is done */
    uint8_t slot;               /* 0 to 8 */
} AbecsCmdGen0401CmdData;

/* How a slot is after 04/01. */
typedef struct AbecsCmdGen0401RspData {
    uint8_t status1;  /* of the slot, as the PIN pad tells it */
    uint32_t status2; /* further status, likewise */
    uint8_t atrLen;   /* what the chip answered to its reset, in bytes: up to 36 */
    char atr[73];     /* the first `atrLen` digits of it, that is its first half */
} AbecsCmdGen0401RspData;

/* A command to a chip. */
typedef struct AbecsCmdGen0402CmdData {
    uint8_t slot;       /* 0 to 8 */
    char apduHeader[9]; /* CLA, INS, P1 and P2: 8 digits */
    uint8_t lc;         /* how many bytes of data */
    char apduData[511]; /* twice as many digits */
    uint16_t le;        /* how many bytes of answer at most: 0 to 256 */
} AbecsCmdGen0402CmdData;

/* What a chip has answered to 04/02. */
typedef struct AbecsCmdGen0402RspData {
    uint8_t status;     /* of the exchange, as the PIN pad tells it */
    char sw[5];         /* the chip's status word */
    uint16_t la;        /* how many bytes of data */
    char apduData[513]; /* twice as many digits */
} AbecsCmdGen0402RspData;

/* A PIN that the cardholder is to enter and that goes to the chip alone. */
typedef struct AbecsCmdGen0403CmdData {
    uint8_t slot;         /* 0 to 8 */
    char apduHeader[9];   /* of the command that takes the PIN to the chip: 8 digits */
    char format;          /* of the PIN block: a hexadecimal digit */
    uint8_t pinMinDigits; /* the least digits of the PIN */
    uint8_t pinMaxDigits; /* from the least to 99 */
    char message[33];     /* the prompt, at most 32 characters */
} AbecsCmdGen0403CmdData;

/* What a chip has made of the PIN. */
typedef struct AbecsCmdGen0403RspData {
    uint8_t status; /* of the exchange, as the PIN pad tells it */
    char sw[5];     /* the chip's status word */
} AbecsCmdGen0403RspData;

/*
 * 02/K3: stores one character for each index, '1' where there is a key, with a NUL in `responseData` (room for 101
 * bytes). ILLEGAL_ARGUMENT "'cmdData' is NULL"; "'responseData' is NULL"; "Invalid value for cmdData->keyType: %d";
 * "Invalid value for cmdData->keyUse: %d"; "Invalid value for cmdData->idxIni: %d"; "Invalid value for cmdData->idxEnd:
 * %d"; "cmdData->idxIni > cmdData->idxEnd". PROTOCOL_ERROR "(%s) GEN_OUTLEN is too big: %zu)" above 100.
 */
KOR_API int32_t abecs_cmd_gen_02_k3(AbecsComm* pinpad, const AbecsCmdGen02K3CmdData* cmdData, char* responseData);

/*
 * 03/02: reads data objects of the card that was read last; `tags` are their tags in hexadecimal, one behind the other,
 * at most 256 digits. ILLEGAL_ARGUMENT "'tags' is NULL"; "'tags' is too big (max: 256, requested: %zu)"; "'tags' length
 * is not even (length: %zu)"; "'out' is NULL"; and for an answer that `out` has no room for, or of an odd number of
 * digits, as abecs_data_read_field_h.
 */
KOR_API int32_t abecs_cmd_gen_03_02(AbecsComm* pinpad, const char* tags, AbecsCmdGenTagsOut* out);

/*
 * 03/03: enciphers data under a key of the PIN pad. ILLEGAL_ARGUMENT "'cmdData' is NULL"; "Invalid 'cmdData->idx': %d";
 * "Invalid length for 'cmdData->input': %zu"; "'responseData' is NULL"; and for an answer of an odd number of digits,
 * as abecs_data_read_field_h. PROTOCOL_ERROR "(GEN/03/03) Invalid GEN_OUTLEN: %zu" below 20 and above 276.
 */
KOR_API int32_t abecs_cmd_gen_03_03(AbecsComm* pinpad, const AbecsCmdGen0303CmdData* cmdData,
                                    AbecsCmdGen0303RspData* responseData);

/*
 * Prepares clear data for 03/03 in a PIN pad that has a working key for card numbers: deciphers them under the key,
 * because enciphering them under it is the first that the PIN pad does. Of the text the first `size` digits count.
 * `out`, in lower case, may be `clearData`, and is as it was after an error; returns `out`, or null where a raise
 * returns. ILLEGAL_ARGUMENT "Missing 'clearData'"; "Invalid length for 'clearData': %zu"; "Missing 'wkPan'"; "Missing
 * 'out'"; "Invalid enumerator for %s: %d" with "AbecsWkPanType_E"; those of abecs_data_from_hex2 and, without any data,
 * abecs_data_to_hex. CRYPT_ERROR.
 */
KOR_API AbecsCmdGen0303Data* abecs_cmd_gen_03_03_encode_data(const AbecsCmdGen0303Data* clearData,
                                                             const AbecsWkPan* wkPan, AbecsCmdGen0303Data* out);

/*
 * 04/01: switches a slot's power or asks for it. ILLEGAL_ARGUMENT "'cmdData' is NULL"; "'responseData' is NULL";
 * "Invalid enumerator for %s: %d" with "AbecsCmdGen0401Oper_E"; "Invalid value for cmdData->slot: %d". PROTOCOL_ERROR
 * "GEN0401_ATRLEN is too big (max: 36, returned: %d)".
 */
KOR_API int32_t abecs_cmd_gen_04_01(AbecsComm* pinpad, const AbecsCmdGen0401CmdData* cmdData,
                                    AbecsCmdGen0401RspData* responseData);

/*
 * 04/02: sends a command to a chip and brings its answer. ILLEGAL_ARGUMENT "'cmdData' is NULL"; "'responseData' is
 * NULL"; "'cmdData->slot' is invalid: %d"; "'cmdData->le' is invalid: %d". PROTOCOL_ERROR "G0402_LA is too big (max:
 * 256, returned: %d)".
 */
KOR_API int32_t abecs_cmd_gen_04_02(AbecsComm* pinpad, const AbecsCmdGen0402CmdData* cmdData,
                                    AbecsCmdGen0402RspData* responseData);

/*
 * 04/03: has the cardholder enter the PIN for a chip, and blocks the link on "GEN/04/03". Returns OK or, where a raise
 * returns, the code that was raised.
 *
 * ILLEGAL_ARGUMENT "'cmdData' is NULL"; "'cmdData->slot' is invalid: %d"; "'cmdData->format' is invalid: %c";
 * "'cmdData->pinMinDigits' is invalid: %d"; "'cmdData->pinMaxDigits' is invalid: %d"; "'cmdData->pinMinDigits (%d)' is
 * greater than cmdData->pinMaxDigits (%d)"; "Invalid character (0x%02X) at position %zu" for one that the display does
 * not take, a carriage return too.
 */
KOR_API KorResult_E abecs_cmd_gen_04_03(AbecsComm* pinpad, const AbecsCmdGen0403CmdData* cmdData);

/*
 * Polls for the answer of 04/03. Returns RSP_STAT and unblocks the link, with what the chip said in `rspDataOut` when
 * RSP_STAT is 0; or -1 when nothing has come yet, or three damaged frames have, or -2 with the text of a notification
 * in `notification` (33 bytes, or none), the link staying blocked.
 *
 * ILLEGAL_ARGUMENT "'rspDataOut' is NULL"; ILLEGAL_STATE "%s was not sent yet" with "GEN/04/03"; those of
 * abecs_packet_read_notification. An error leaves the blocked state as it is.
 */
KOR_API int32_t abecs_cmd_gen_04_03_response(AbecsComm* pinpad, AbecsCmdGen0403RspData* rspDataOut, char* notification);

/* 04/04: as 03/02, of the card in the chip reader. */
KOR_API int32_t abecs_cmd_gen_04_04(AbecsComm* pinpad, const char* tags, AbecsCmdGenTagsOut* out);

KOR_END_DECLS

#endif
