// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/clo.h"

#include "abecs/cmd/frame.h"
#include "core/raise.h"
#include "quorvel/kor/string.h"

using kor::raise;

namespace {

constexpr abecs::Command kClo{.id = "CLO"};
constexpr size_t kMessageWidth = 32;

}  // namespace

int32_t abecs_cmd_clo(AbecsComm* pinpad, const char* msg) {
    using namespace abecs;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    const char* text = msg != nullptr ? msg : "";
    const size_t length = kor_string_len(text);
    if (length > kMessageWidth) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'msg' it too long (maximum: %d, requested: %zu)",
                     static_cast<int>(kMessageWidth), length),
               kRaised;
    }
    return call(pinpad, kClo, Request::fields([&](AbecsPacket* packet) {
                    abecs_packet_write_field_n(packet, kMessageWidth, 3);
                    abecs_packet_write_field_s(packet, text, kMessageWidth, false);
                }),
                Response::status());
}
