// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/cng.h"

#include "abecs/cmd/exchange.h"
#include "abecs/data/codec.h"
#include "core/check.h"
#include "quorvel/kor/string.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kCng{.id = "CNG"};
constexpr size_t kMaxLength = 198;

// Both lengths count whole bytes, although every digit travels, a last one without its partner too.
void write_request(AbecsPacket* packet, const char* emvDat, size_t length) {
    const size_t count = length / 2;
    abecs_packet_write_field_n(packet, count + 2, 3);
    abecs_packet_write_field_n(packet, count, 2);
    abecs_packet_write_field_h_cdata(packet, emvDat, 2 * count, 2 * count);
    if (length % 2 == 0) { return; }
    const char last = emvDat[length - 1];
    if (refuse_if(!codec::is_hex(last), "Invalid hex byte at index %zu", length - 1)) { return; }
    abecs_packet_write_byte(packet, static_cast<uint8_t>(codec::to_upper(last)));
}

}  // namespace

int32_t abecs_cmd_cng(AbecsComm* pinpad, const char* emvDat) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(emvDat, "'emvDat' is NULL")) { return kRaised; }
    const size_t length = kor_string_len(emvDat);
    if (refuse_if(length > kMaxLength, "'emvDat' length is greater than 198 characters")) { return kRaised; }
    return call(pinpad, kCng, Request::fields([&](AbecsPacket* packet) { write_request(packet, emvDat, length); }),
                Response::status());
}
