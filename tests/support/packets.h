// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_PACKETS_H
#define QUORVEL_TESTS_SUPPORT_PACKETS_H

#include <cstdint>
#include <string>
#include <string_view>

#include "quorvel/abecs/packet.h"

namespace support {

// A packet that lives as long as this. All functions are inline, so that only programs that have the data layer need
// it.
class Packet {
public:
    explicit Packet(std::string_view bytes = {}) { fill(bytes); }
    ~Packet() { abecs_packet_delete(&packet_); }
    Packet(Packet&&) = delete;

    [[nodiscard]] AbecsPacket* get() const { return packet_; }
    operator AbecsPacket*() const { return packet_; }

    void fill(std::string_view bytes) const {
        abecs_packet_clear(packet_);
        abecs_packet_write_field_b(packet_, bytes.data(), bytes.size());
    }

    // Takes what has not been read yet out of the packet.
    [[nodiscard]] std::string take() const {
        std::string bytes(abecs_packet_available_read(packet_), '\0');
        for (char& c : bytes) { c = static_cast<char>(abecs_packet_read_byte(packet_)); }
        return bytes;
    }

private:
    AbecsPacket* packet_ = abecs_packet_new();
};

}  // namespace support

#endif
