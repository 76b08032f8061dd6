// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/dex.h"

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/message.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr size_t kMaxMessage = 160;

}  // namespace

int32_t abecs_cmd_dex(AbecsComm* pinpad, const char* msg) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(msg, "'msg' is NULL")
        || refuse_long_message(msg, kMaxMessage)) {
        return kRaised;
    }
    const size_t length = kor_string_len(msg);
    return call(pinpad, {.id = "DEX"}, Request::fields([&](AbecsPacket* packet) {
                    abecs_packet_write_field_n(packet, kLengthWidth + length, kLengthWidth);
                    abecs_packet_write_field_n(packet, length, kLengthWidth);
                    abecs_packet_write_field_s(packet, msg, length, true);
                }),
                Response::status());
}
