// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_CMD_MESSAGE_H
#define QUORVEL_ABECS_CMD_MESSAGE_H

#include <cstddef>

#include "abecs/data/limits.h"
#include "core/check.h"
#include "quorvel/abecs/packet.h"
#include "quorvel/kor/string.h"

// The message of the commands that show one.
namespace abecs {

[[nodiscard]] inline bool refuse_long_message(const char* msg, size_t most = kMessageWidth) {
    const size_t length = kor_string_len(msg);
    return kor::refuse_if(length > most, "'msg' it too long (maximum: %d, requested: %zu)", static_cast<int>(most),
                          length);
}

// As a block of the display's width.
inline void write_message(AbecsPacket* packet, const char* msg) {
    abecs_packet_write_field_n(packet, kMessageWidth, kLengthWidth);
    abecs_packet_write_field_s(packet, msg, kMessageWidth, false);
}

}  // namespace abecs

#endif
