/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_CKE_H
#define QUORVEL_ABECS_CMD_CKE_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/* What ended the wait. */
typedef enum AbecsCmdCkeEvent_E KOR_ENUM_INT32 {
    ABECS_CMD_CKE_EVENT_KEY = 0,
    ABECS_CMD_CKE_EVENT_MAGNETIC_CARD = 1,
    ABECS_CMD_CKE_EVENT_ICC = 2,
    ABECS_CMD_CKE_EVENT_CTLS = 3
} AbecsCmdCkeEvent_E;

/* The key that was pressed; any other key of the PIN pad counts as ENTER. */
typedef enum AbecsCmdCkeKey_E KOR_ENUM_INT32 {
    ABECS_CMD_CKE_KEY_ENTER = 0,
    ABECS_CMD_CKE_KEY_F1 = 4,
    ABECS_CMD_CKE_KEY_F2 = 5,
    ABECS_CMD_CKE_KEY_F3 = 6,
    ABECS_CMD_CKE_KEY_F4 = 7,
    ABECS_CMD_CKE_KEY_CLEAR = 8,
    ABECS_CMD_CKE_KEY_CANCEL = 13
} AbecsCmdCkeKey_E;

/* How chip cards are looked for. The value is passed to the PIN pad as it is. */
typedef enum AbecsCmdCkeIccCheckType_E KOR_ENUM_INT32 {
    ABECS_CMD_CKE_ICC_CHECK_TYPE_0 = 0,
    ABECS_CMD_CKE_ICC_CHECK_TYPE_1 = 1,
    ABECS_CMD_CKE_ICC_CHECK_TYPE_2 = 2
} AbecsCmdCkeIccCheckType_E;

/* How contactless cards are looked for. The value is passed to the PIN pad as it is, or left out. */
typedef enum AbecsCmdCkeCtlsCheckType_E KOR_ENUM_INT32 {
    ABECS_CMD_CKE_CTLS_CHECK_TYPE_NOT_SENT = -1,
    ABECS_CMD_CKE_CTLS_CHECK_TYPE_0 = 0,
    ABECS_CMD_CKE_CTLS_CHECK_TYPE_1 = 1
} AbecsCmdCkeCtlsCheckType_E;

/*
 * An event and what belongs to it: the key, the tracks of a magnetic card, or whether a card is there. Tracks are
 * without trailing blanks, and in clear when the link has a PAN working key; each length is that of its text.
 *
 * After abecs_cmd_dwk1 without the link's key the tracks come enciphered, and track 2 is read in the width of an open
 * link: track2 lacks the last 3 of the 40 characters of its field, and track3 has them in front and lacks the last 3 of
 * its own.
 */
typedef struct AbecsCmdCkeOut {
    AbecsCmdCkeEvent_E event; /* which of the following is there */
    __extension__ union {     /* a struct without a name is no C++, but known to every compiler that this is for */
        AbecsCmdCkeKey_E key; /* of a key */
        struct {
            uint8_t trk1Len;  /* of a stripe: length of track 1 */
            char track1[77];  /* track 1 */
            uint8_t trk2Len;  /* length of track 2 */
            char track2[41];  /* track 2 */
            uint8_t trk3Len;  /* length of track 3 */
            char track3[105]; /* track 3 */
        };
        bool iccPresent;  /* of a chip: whether one is in the reader */
        bool ctlsPresent; /* of a contactless card: whether one is there */
    };
} AbecsCmdCkeOut;

/*
 * CKE: waits for the first of the events that are enabled: a key, a magnetic card, a chip card, a contactless card.
 *
 * ILLEGAL_ARGUMENT, in this order: "'pinpad' is NULL"; "Invalid enumerator for %s: %d" with
 * "AbecsCmdCkeIccCheckType_E", with "AbecsCmdCkeCtlsCheckType_E". And what the link raises.
 */
KOR_API void abecs_cmd_cke(AbecsComm* pinpad, bool keyEnable, bool magEnable, AbecsCmdCkeIccCheckType_E iccCheck,
                           AbecsCmdCkeCtlsCheckType_E ctlsCheck);

/*
 * Polls for the answer of CKE. Returns RSP_STAT and unblocks the link, with the event in `out` when RSP_STAT is 0; or
 * -1 when nothing has come yet, or three damaged frames have, or -2 with the text of a notification in `notification`
 * (33 bytes, or none), the link staying blocked.
 *
 * ILLEGAL_ARGUMENT "'out' is NULL", "'pinpad' is NULL"; ILLEGAL_STATE "%s was not sent yet". PROTOCOL_ERROR:
 * "Unrecognized response" for an answer under six bytes, "(%s) Invalid RSP_ID: %s)" for that of another command, and
 * for an event of the wrong shape "'RSP_LEN1' invalid value  (expected: 3, received: %d)" (a key), "'RSP_LEN1' invalid
 * value  (expected: 255, received: %d)" (a magnetic card, whose answer has 225 bytes), "'RSP_LEN1' invalid value
 * (expected: 2, received: %d)" and "'CKE_ICCSTAT' invalid value: %d" (a chip card), "'RSP_LEN1' invalid value
 * (expected: 2, received: %d" with two blanks before the bracket and "'CKE_CTLSCSTAT' invalid value: %d" (a contactless
 * card), "'CKE_EVENT' invalid value: %d". Those of abecs_packet_read_rsp_stat and abecs_packet_read_notification;
 * IO_ERROR for a malformed field; those of abecs_pan_decrypt_track while the link has a PAN working key, RUNTIME_ERROR
 * "Unhandled case" for one of an unknown type among them; and what the link raises. An error leaves the blocked state
 * as it is, and may leave a part of the answer in `out`.
 */
KOR_API int32_t abecs_cmd_cke_response(AbecsComm* pinpad, AbecsCmdCkeOut* out, char* notification);

KOR_END_DECLS

#endif
