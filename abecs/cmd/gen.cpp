// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/gen.h"

#include "core/check.h"
#include "quorvel/kor/string.h"

using namespace kor;

namespace {

constexpr size_t kMaxTags = 256;

}  // namespace

namespace abecs {

void write_gen_head(AbecsPacket* packet, const SubCommand& sub, size_t length) {
    const size_t data = kSubCommandWidth + length;
    abecs_packet_write_field_n(packet, kGroupWidth + kLengthWidth + data, kLengthWidth);
    abecs_packet_write_field_n(packet, sub.group, kGroupWidth);
    abecs_packet_write_field_n(packet, data, kLengthWidth);
    abecs_packet_write_field_a(packet, sub.id, kSubCommandWidth, false);
}

size_t read_gen_head(AbecsPacket* packet) {
    abecs_packet_read_field_n(packet, kLengthWidth);
    return static_cast<size_t>(abecs_packet_read_field_n(packet, kLengthWidth));
}

bool refuse_tags(const AbecsComm* pinpad, const char* tags, const AbecsCmdGenTagsOut* out) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(tags, "'tags' is NULL")) { return true; }
    const size_t length = kor_string_len(tags);
    return refuse_if(length > kMaxTags, "'tags' is too big (max: 256, requested: %zu)", length)
           || refuse_if(length % 2 != 0, "'tags' length is not even (length: %zu)", length)
           || refuse_null(out, "'out' is NULL");
}

}  // namespace abecs
