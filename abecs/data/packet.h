// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_PACKET_H
#define QUORVEL_ABECS_DATA_PACKET_H

#include <span>

#include "abecs/data/bytes.h"
#include "abecs/data/field_h.h"
#include "quorvel/abecs/packet.h"

namespace abecs {

// Everything between SYN and ETB, before stuffing.
constexpr uint32_t kPacketCapacity = 2044;

}  // namespace abecs

struct AbecsPacket {
    kor::InlineBuffer<abecs::kPacketCapacity> bytes;
    KorBuffer* buffer = &bytes.buffer;
};

namespace abecs {

// Null, with an error raised, for a null packet.
[[nodiscard]] inline KorBuffer* bytes_of(const AbecsPacket* packet) {
    if (packet == nullptr) { return kor::raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'packet' is NULL"), nullptr; }
    return packet->buffer;
}

// The unread bytes, in the order in which they would be read: in two pieces where they go round the end.
struct Unread {
    std::span<const uint8_t> first;
    std::span<const uint8_t> second;
};

[[nodiscard]] Unread unread_of(const AbecsPacket* packet);

// Counts the unread bytes as read.
void consume(AbecsPacket* packet);

// Empties the packet and leaves nothing of what was ever written to it.
void wipe(AbecsPacket* packet);

// Writes the bytes, as far as there is room, and returns the rest.
[[nodiscard]] std::span<const uint8_t> fill(AbecsPacket* packet, std::span<const uint8_t> bytes);

inline size_t read_field_h_bytes(AbecsPacket* packet, uint8_t* to, size_t sizeTo, size_t fieldLen) {
    KorBuffer* bytes = bytes_of(packet);
    return bytes != nullptr ? read_field_h_bytes(bytes, to, sizeTo, fieldLen) : 0;
}

}  // namespace abecs

#endif
