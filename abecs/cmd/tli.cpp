// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/tli.h"

#include "abecs/cmd/frame.h"
#include "core/raise.h"
#include "quorvel/kor/string.h"

using kor::raise;

namespace {

constexpr abecs::Command kTli{.id = "TLI", .unexpectedId = abecs::UnexpectedId::kTable};
constexpr uint8_t kMaxIndex = 99;
constexpr size_t kVersionWidth = 10;

}  // namespace

int32_t abecs_cmd_tli(AbecsComm* pinpad, uint8_t acqIdx, const char* tabVer) {
    using namespace abecs;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (acqIdx > kMaxIndex) {
        return raise(KOR_RESULT_INDEX_OUT_OF_BOUNDS, "Invalid 'acqIdx': %d (maximum is 99)", acqIdx), kRaised;
    }
    if (tabVer == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'tabVer' is NULL"), kRaised; }
    const size_t length = kor_string_len(tabVer);
    if (length > kVersionWidth) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid 'tabVer' length: %d (max: 10)", static_cast<int>(length)),
               kRaised;
    }
    return call(pinpad, kTli, Request::fields([&](AbecsPacket* packet) {
                    abecs_packet_write_field_n(packet, 2 + kVersionWidth, 3);
                    abecs_packet_write_field_n(packet, acqIdx, 2);
                    abecs_packet_write_field_a(packet, tabVer, kVersionWidth, false);
                }),
                Response::status());
}
