// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/dsp.h"

#include "abecs/cmd/frame.h"
#include "core/raise.h"
#include "quorvel/kor/string.h"

using kor::raise;

namespace {

constexpr abecs::Command kDsp{.id = "DSP"};
constexpr size_t kMessageWidth = 32;

}  // namespace

int32_t abecs_cmd_dsp(AbecsComm* pinpad, const char* msg) {
    using namespace abecs;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (msg == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'msg' is NULL"), kRaised; }
    const size_t length = kor_string_len(msg);
    if (length > kMessageWidth) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'msg' it too long (maximum: %d, requested: %zu)",
                     static_cast<int>(kMessageWidth), length),
               kRaised;
    }
    return call(pinpad, kDsp, Request::fields([&](AbecsPacket* packet) {
                    abecs_packet_write_field_n(packet, kMessageWidth, 3);
                    abecs_packet_write_field_s(packet, msg, kMessageWidth, false);
                }),
                Response::status());
}
