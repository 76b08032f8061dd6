// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/tli.h"

#include "abecs/cmd/exchange.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/kor/string.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kTli{.id = "TLI", .unexpectedId = UnexpectedId::kTable};

}  // namespace

int32_t abecs_cmd_tli(AbecsComm* pinpad, uint8_t acqIdx, const char* tabVer) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return kRaised; }
    if (acqIdx > kMaxIndex) {
        return raise(KOR_RESULT_INDEX_OUT_OF_BOUNDS, "Invalid 'acqIdx': %d (maximum is 99)", acqIdx), kRaised;
    }
    if (refuse_null(tabVer, "'tabVer' is NULL")) { return kRaised; }
    const size_t length = kor_string_len(tabVer);
    if (refuse_if(length > kVersionWidth, "Invalid 'tabVer' length: %d (max: 10)", static_cast<int>(length))) {
        return kRaised;
    }
    return call(pinpad, kTli, Request::fields([&](AbecsPacket* packet) {
                    abecs_packet_write_field_n(packet, 2 + kVersionWidth, 3);
                    abecs_packet_write_field_n(packet, acqIdx, 2);
                    abecs_packet_write_field_a(packet, tabVer, kVersionWidth, false);
                }),
                Response::status());
}
