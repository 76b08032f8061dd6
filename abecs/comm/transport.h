// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_COMM_TRANSPORT_H
#define QUORVEL_ABECS_COMM_TRANSPORT_H

#include "abecs/comm/observer.h"
#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/packet.h"

// What goes over the line. Everything here is called inside a try block, so that no raise returns and no loop goes on
// with a line that has failed.
namespace abecs {

// Discards what arrives until the line is silent, and what is queued. False when the limit of the call came first: the
// next purge goes on from there.
bool purge(AbecsComm* link);

// Aborts what the PIN pad is doing and frees the link.
void cancel(AbecsComm* link);

// Sends one frame and sees it acknowledged: `encrypted` if there is one, else `plain`. What was sent is consumed,
// unless it was rejected each time.
void transmit(AbecsComm* link, AbecsPacket* plain, AbecsPacket* encrypted);

// Fills `out` with the data of one good frame.
[[nodiscard]] Frame receive(AbecsComm* link, AbecsPacket* out);

}  // namespace abecs

#endif
