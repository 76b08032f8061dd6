// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_COMM_SECURE_H
#define QUORVEL_ABECS_COMM_SECURE_H

#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/packet.h"

// The encrypted session. Both are called inside a try block.
namespace abecs {

// The packet to send in an encrypted frame in place of `plain`, whose read position stays as it was, also when it
// raises. The caller deletes it.
[[nodiscard]] AbecsPacket* secure_encrypt(AbecsComm* link, AbecsPacket* plain);

// Makes the unread bytes, the content of an encrypted frame, the plain response. Without a session key a content of
// whole blocks is left as it came.
void secure_decrypt(AbecsComm* link, AbecsPacket* packet);

}  // namespace abecs

#endif
