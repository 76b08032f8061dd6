// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/rmc.h"

#include "abecs/cmd/frame.h"
#include "core/raise.h"
#include "quorvel/kor/string.h"

using kor::raise;

namespace {

constexpr abecs::Command kRmc{.id = "RMC"};
constexpr size_t kMessageWidth = 32;

}  // namespace

void abecs_cmd_rmc(AbecsComm* pinpad, const char* msg) {
    using namespace abecs;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"); }
    const char* text = msg != nullptr ? msg : "";
    const size_t length = kor_string_len(text);
    if (length > kMessageWidth) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'msg' it too long (maximum: %d, requested: %zu)",
                     static_cast<int>(kMessageWidth), length);
    }
    send(pinpad, kRmc, Request::fields([&](AbecsPacket* packet) {
             abecs_packet_write_field_n(packet, kMessageWidth, 3);
             abecs_packet_write_field_s(packet, text, kMessageWidth, false);
         }));
}

int32_t abecs_cmd_rmc_response(AbecsComm* pinpad, char* notification) {
    using namespace abecs;
    return poll(pinpad, kRmc, Response::status(), notification);
}
