// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_CMD_GEN_PRIVATE_H
#define QUORVEL_ABECS_CMD_GEN_PRIVATE_H

#include <cstddef>
#include <cstdint>

#include "abecs/cmd/exchange.h"
#include "quorvel/abecs/cmd/gen.h"

// What the sub-commands of GEN have in common.
namespace abecs {

inline constexpr Command kGen{.id = "GEN"};

struct SubCommand {
    uint64_t group;
    const char* id;
};

inline constexpr size_t kGroupWidth = 2, kSubCommandWidth = 2, kStatusWordWidth = 4;

// `length` is that of the sub-command's data, which follow.
void write_gen_head(AbecsPacket* packet, const SubCommand& sub, size_t length);

// Returns the length of the output, whose unit is the sub-command's own.
size_t read_gen_head(AbecsPacket* packet);

template <typename Write, typename Read>
int32_t call_gen(AbecsComm* pinpad, const SubCommand& sub, size_t length, Write&& write, Read&& read) {
    return call(pinpad, kGen, Request::fields([&](AbecsPacket* packet) {
                    write_gen_head(packet, sub, length);
                    write(packet);
                }),
                Response::fields([&](AbecsPacket* packet) { read(packet, read_gen_head(packet)); }));
}

template <size_t Size>
void write_digits(AbecsPacket* packet, const char (&member)[Size], size_t width) {
    abecs_packet_write_field_h_cdata(packet, member, Size, width);
}

// The length is 0 until the digits that it counts have been read, so that it never tells of more than there are.
template <typename Length, size_t Size>
void read_digits(AbecsPacket* packet, char (&member)[Size], size_t width, Length& length, size_t value) {
    length = 0;
    abecs_packet_read_field_h(packet, member, Size, width);
    length = static_cast<Length>(value);
}

// The arguments of the sub-commands that ask for tags.
[[nodiscard]] bool refuse_tags(const AbecsComm* pinpad, const char* tags, const AbecsCmdGenTagsOut* out);

}  // namespace abecs

#endif
