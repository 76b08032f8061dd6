/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_OBSERVER_H
#define QUORVEL_ABECS_OBSERVER_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * Being told of what a link does, for a log. None of it holds data, unless the caller asks for the packets.
 *
 * A null handle raises ILLEGAL_ARGUMENT "'pinpad' is NULL".
 */

/* What has happened on the link. */
typedef enum {
    ABECS_LINK_EVENT_SENT = 0,      /* the PIN pad has accepted a request */
    ABECS_LINK_EVENT_RECEIVED = 1,  /* a response or a notification has come */
    ABECS_LINK_EVENT_REJECTED = 2,  /* the PIN pad has refused a request's frame, which was damaged on the way */
    ABECS_LINK_EVENT_DAMAGED = 3,   /* a frame has come damaged or not to its end, and is asked for again */
    ABECS_LINK_EVENT_CANCELLED = 4, /* the PIN pad has confirmed CAN */
    ABECS_LINK_EVENT_TIMEOUT = 5,   /* an answer, or the confirmation of a CAN, has not come in time */
} AbecsLinkEvent_E;

/* One event of a link. */
typedef struct {
    AbecsLinkEvent_E type; /* what has happened */
    char cmdId[4];     /* CMD_ID or RSP_ID of SENT and RECEIVED; of the others that of the last request, or "". What is
                          neither an upper-case letter nor a digit is a question mark */
    int32_t status;    /* RSP_STAT of RECEIVED, or -1 */
    bool encrypted;    /* whether the frame was; false where there is none */
    size_t packetSize; /* of the packet in clear, as the command makes it and reads it, in bytes; or 0 */
    size_t frameSize;  /* what stood on the line for it, from SYN to the end of the CRC, in bytes; or 0 */
    int64_t duration;  /* in microseconds since the last event or, if that came later, since the request or CAN began to
                          be sent */
    const uint8_t* packet; /* the packet in clear, valid until the observer returns; null if it was not asked for */
} AbecsLinkEvent;

/*
 * An observer. It is called in the middle of a call of the link, in the caller's thread: it must return, raise nothing
 * and call no function of a link.
 */
typedef void (*AbecsLinkObserverFn)(const AbecsLinkEvent* event, void* context);

/*
 * Has `observer` told of each event from now on, with `context`, which the caller keeps alive; null ends it. A polling
 * function that finds nothing is no event, and neither is a wait that abecs_comm_wake has ended. Told by the raise
 * alone are an error of the port, a frame that cannot be deciphered or is longer than a packet, and a byte that is no
 * answer. An encrypted response that came without a session key is told without id, status and packet.
 */
KOR_API void abecs_comm_set_observer(AbecsComm* pinpad, AbecsLinkObserverFn observer, void* context);

/*
 * Whether the observer is shown the packets in clear, those of an encrypted session too: card data, PIN blocks and keys
 * included. Off at first.
 */
KOR_API void abecs_comm_show_clear_packets(AbecsComm* pinpad, bool show);

KOR_END_DECLS

#endif
