// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gdu.h"

#include "abecs/cmd/exchange.h"
#include "core/check.h"
#include "core/raise.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kGdu{.id = "GDU", .unexpectedId = UnexpectedId::kTable};

void read_ksn(AbecsPacket* packet, char* out) {
    const auto length = static_cast<unsigned>(abecs_packet_read_field_n(packet, kLengthWidth));
    if (length != kKsnWidth) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "Invalid RSP_LEN1 (expected: 20, read: %u)", length);
    }
    abecs_packet_read_field_h(packet, out, kKsnWidth + 1, kKsnWidth);
}

}  // namespace

int32_t abecs_cmd_gdu(AbecsComm* pinpad, AbecsCmdGduMethod_E method, uint8_t idx, char* out) {
    if (idx > kMaxIndex) {
        return raise(KOR_RESULT_INDEX_OUT_OF_BOUNDS, "Invalid idx: %d (maximum is 99)", idx), kRaised;
    }
    if (refuse_null(out, "'out' is NULL")) { return kRaised; }
    if (refuse_outside(method, ABECS_CMD_GDU_METHOD_2, ABECS_CMD_GDU_METHOD_3, "AbecsCmdGduMethod_E")) {
        return kRaised;
    }
    return call(pinpad, kGdu, Request::fields([&](AbecsPacket* packet) {
                    abecs_packet_write_field_n(packet, 1 + 2, 3);
                    abecs_packet_write_field_n(packet, static_cast<uint64_t>(method), 1);
                    abecs_packet_write_field_n(packet, idx, 2);
                }),
                Response::fields([&](AbecsPacket* packet) { read_ksn(packet, out); }));
}
