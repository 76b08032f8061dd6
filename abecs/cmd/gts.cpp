// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gts.h"

#include "abecs/cmd/exchange.h"
#include "core/check.h"
#include "core/raise.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kGts{.id = "GTS", .unexpectedId = UnexpectedId::kTable};

void read_version(AbecsPacket* packet, char* out) {
    const auto length = static_cast<unsigned>(abecs_packet_read_field_n(packet, kLengthWidth));
    if (length != kVersionWidth) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "Invalid RSP_LEN1 (expected: 10, read: %u)", length);
    }
    abecs_packet_read_field_a(packet, out, kVersionWidth + 1, kVersionWidth, false);
}

}  // namespace

int32_t abecs_cmd_gts(AbecsComm* pinpad, uint8_t acqIdx, char* out) {
    if (acqIdx > kMaxIndex) {
        return raise(KOR_RESULT_INDEX_OUT_OF_BOUNDS, "Invalid acqIdx: %d (maximum is 99)", acqIdx), kRaised;
    }
    if (refuse_null(out, "'out' is NULL")) { return kRaised; }
    const int32_t stat = call(pinpad, kGts, Request::fields([&](AbecsPacket* packet) {
                                  abecs_packet_write_field_n(packet, 2, 3);
                                  abecs_packet_write_field_n(packet, acqIdx, 2);
                              }),
                              Response::fields([&](AbecsPacket* packet) { read_version(packet, out); }));
    if (stat != ABECS_RSP_STAT_ST_OK) { *out = '\0'; }
    return stat;
}
