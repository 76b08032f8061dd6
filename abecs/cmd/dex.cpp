// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/dex.h"

#include "abecs/cmd/frame.h"
#include "core/raise.h"
#include "quorvel/kor/string.h"

using kor::raise;

namespace {

constexpr abecs::Command kDex{.id = "DEX"};
constexpr size_t kMaxMessage = 160;
constexpr size_t kLengthWidth = 3;

}  // namespace

int32_t abecs_cmd_dex(AbecsComm* pinpad, const char* msg) {
    using namespace abecs;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (msg == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'msg' is NULL"), kRaised; }
    const size_t length = kor_string_len(msg);
    if (length > kMaxMessage) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'msg' it too long (maximum: %d, requested: %zu)",
                     static_cast<int>(kMaxMessage), length),
               kRaised;
    }
    return call(pinpad, kDex, Request::fields([&](AbecsPacket* packet) {
                    abecs_packet_write_field_n(packet, kLengthWidth + length, 3);
                    abecs_packet_write_field_n(packet, length, kLengthWidth);
                    abecs_packet_write_field_s(packet, msg, length, true);
                }),
                Response::status());
}
