// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/fnc.h"

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/member_text.h"
#include "core/check.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kFnc{.id = "FNC"};
constexpr size_t kMaxBytes = 999;
constexpr int32_t kNotReached = 9;  // the communication status that stands apart from 0 and 1

// Bounded by the member, so that digits without a NUL end there too.
template <size_t Size>
void write_digits(AbecsPacket* packet, const char (&digits)[Size], size_t count) {
    abecs_packet_write_field_h_cdata(packet, digits, Size - 1, 2 * count);
}

void write_request(AbecsPacket* packet, const AbecsCmdFncData& data) {
    abecs_packet_write_field_n(packet, 2 * data.issDatLen + 10, 3);
    abecs_packet_write_field_n(packet, static_cast<uint64_t>(data.commSt), 1);
    abecs_packet_write_field_n(packet, 0, 1);
    abecs_packet_write_field_a(packet, WholeMemberText(data.arc).text, sizeof data.arc - 1, false);
    abecs_packet_write_field_n(packet, data.issDatLen, 3);
    write_digits(packet, data.issDat, data.issDatLen);
    abecs_packet_write_field_n(packet, 0, 3);
    abecs_packet_write_field_n(packet, 2 * data.tagsLen + 3, 3);
    abecs_packet_write_field_n(packet, data.tagsLen, 3);
    write_digits(packet, data.tags, data.tagsLen);
}

uint32_t read_number(AbecsPacket* packet, size_t width) {
    return static_cast<uint32_t>(abecs_packet_read_field_n(packet, width));
}

// The length is stored last, so that it never says more than the text has room for.
template <size_t Size>
void read_digits(AbecsPacket* packet, char (&digits)[Size], uint32_t& length, size_t lengthWidth) {
    const uint32_t received = read_number(packet, lengthWidth);
    abecs_packet_read_field_h(packet, digits, Size, size_t{2} * received);
    length = received;
}

void read_response(AbecsPacket* packet, AbecsCmdFncResponse& out) {
    read_number(packet, 3);
    out.decision = read_number(packet, 1);
    read_digits(packet, out.emvData, out.emvDataLen, 3);
    read_digits(packet, out.isResults, out.isResultsLen, 2);
    out.acqDataLen = read_number(packet, 3);
}

}  // namespace

int32_t abecs_cmd_fnc(AbecsComm* pinpad, const AbecsCmdFncData* cmdData, AbecsCmdFncResponse* rspData) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(cmdData, "'cmdData' is NULL")
        || refuse_null(rspData, "'rspData' is NULL")
        || refuse_if(cmdData->issDatLen > kMaxBytes, "invalid cmdData->issDatLen: %zu (max: 999)", cmdData->issDatLen)
        || refuse_if(cmdData->tagsLen > kMaxBytes, "invalid cmdData->tagsLen: %zu (max: 999)", cmdData->tagsLen)
        || refuse_if(cmdData->commSt != 0 && cmdData->commSt != 1 && cmdData->commSt != kNotReached,
                     "invalid cmdData->commSt: %d", cmdData->commSt)) {
        return kRaised;
    }
    return call(pinpad, kFnc, Request::fields([&](AbecsPacket* packet) { write_request(packet, *cmdData); }),
                Response::fields([&](AbecsPacket* packet) { read_response(packet, *rspData); }));
}
