// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/secure.h"

#include "abecs/comm/comm.h"
#include "core/raise.h"

using kor::raise;

namespace abecs {

namespace {

constexpr size_t kBlockSize = 16;  // AES

}  // namespace

AbecsPacket* secure_encrypt(AbecsComm*, AbecsPacket*) {
    return raise(KOR_RESULT_CRYPT_ERROR, "secure channel is not available"), nullptr;
}

void secure_decrypt(AbecsComm* link, AbecsPacket* packet) {
    if (abecs_packet_available_read(packet) % kBlockSize != 0) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "Malformed encrypted response");
    }
    if (!link->keySet) { return; }
    raise(KOR_RESULT_CRYPT_ERROR, "secure channel is not available");
}

}  // namespace abecs
