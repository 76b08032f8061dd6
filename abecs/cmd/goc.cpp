// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/goc.h"

#include <cstring>

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/member_text.h"
#include "core/check.h"
#include "core/raise.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kGoc{.id = "GOC"};
constexpr uint16_t kMaxTags = 128;
constexpr size_t kAcquirer2Width = 32;
// One more than what travels: this is the count that the PIN pad expects.
constexpr size_t kLength = 1 + 12 + 12 + 1 + 1 + 1 + 1 + 2 + 32 + 1 + 8 + 2 + 8 + 2 + 2;
static_assert(kLength == 86);

size_t acquirer_block_size(uint8_t acqIdx) {
    if (acqIdx == 1) { return 2 + 1; }
    return acqIdx == 2 ? kAcquirer2Width : 0;
}

// By its byte: callers that are not written in C may leave any number in a bool, and only 0 and 1 can be read as one.
void write_flag(AbecsPacket* packet, const bool& flag) {
    uint8_t byte;
    std::memcpy(&byte, &flag, sizeof byte);
    abecs_packet_write_field_n(packet, byte != 0 ? 1 : 0, 1);
}

// Bounded by the member, so that digits without a NUL end there too.
template <size_t Size>
void write_digits(AbecsPacket* packet, const char (&digits)[Size], size_t width = Size - 1) {
    abecs_packet_write_field_h_cdata(packet, digits, Size, width);
}

void write_acquirer_block(AbecsPacket* packet, uint8_t acqIdx, const decltype(AbecsCmdGocData::acqpr)& acqpr) {
    const size_t size = acquirer_block_size(acqIdx);
    abecs_packet_write_field_n(packet, size, 2);
    switch (acqIdx) {
        case 1:
            abecs_packet_write_field_n(packet, acqpr.acqpr01.transactionType, 2);
            return write_flag(packet, acqpr.acqpr01.flag);
        case 2:
            return abecs_packet_write_field_s(packet, WholeMemberText(acqpr.acqpr02.data).text, kAcquirer2Width, false);
        default:
            if (size != 0) { raise(KOR_RESULT_PROTOCOL_ERROR, "Unsupported GOC_ACQPR (GCR_ACQIDX == %d)", acqIdx); }
    }
}

// A block of its own: its length, the number of bytes, the bytes as digits.
void write_tags(AbecsPacket* packet, const char (&tags)[2 * kMaxTags + 1], size_t count) {
    abecs_packet_write_field_n(packet, 2 * count + 3, 3);
    abecs_packet_write_field_n(packet, count, 3);
    write_digits(packet, tags, 2 * count);
}

void write_request(AbecsPacket* packet, uint8_t acqIdx, const AbecsCmdGocData& data) {
    abecs_packet_write_field_n(packet, kLength + acquirer_block_size(acqIdx), 3);
    abecs_packet_write_field_n(packet, data.amount, 12);
    abecs_packet_write_field_n(packet, data.cashback, 12);
    abecs_packet_write_field_n(packet, data.exclist, 1);
    write_flag(packet, data.connect);
    abecs_packet_write_field_n(packet, 0, 1);
    abecs_packet_write_field_n(packet, static_cast<uint64_t>(data.method), 1);
    abecs_packet_write_field_n(packet, data.keyidx, 2);
    abecs_packet_write_field_h_cdata(packet, data.wkenc, kKeyWidth, kKeyWidth);  // as stored, with a NUL behind or not
    write_flag(packet, data.riskman);
    write_digits(packet, data.flrlimit);
    abecs_packet_write_field_n(packet, data.tpbrs, 2);
    write_digits(packet, data.thrbrs);
    abecs_packet_write_field_n(packet, data.mtpbrs, 2);
    write_acquirer_block(packet, acqIdx, data.acqpr);
    write_tags(packet, data.tags1, data.tags1len);
    write_tags(packet, data.tags2, data.tags2len);
}

uint8_t read_digit(AbecsPacket* packet) { return static_cast<uint8_t>(abecs_packet_read_field_n(packet, 1)); }

void read_response(AbecsPacket* packet, AbecsCmdGocResponse& out) {
    abecs_packet_read_field_n(packet, 3);
    out.decision = read_digit(packet);
    out.signature = read_digit(packet) != 0;
    out.pinOffline = read_digit(packet) != 0;
    out.pinOfflineErrors = read_digit(packet);
    out.pinBlocked = read_digit(packet) != 0;
    out.pinOnline = read_digit(packet) != 0;
    abecs_packet_read_field_b(packet, out.pinBlock, sizeof out.pinBlock, sizeof out.pinBlock);
    abecs_packet_read_field_b(packet, out.ksn, sizeof out.ksn, sizeof out.ksn);
    const auto length = static_cast<size_t>(abecs_packet_read_field_n(packet, 3));
    abecs_packet_read_field_b(packet, out.emvData, sizeof out.emvData, length);
    out.emvDataLen = static_cast<uint16_t>(length);
    abecs_packet_read_field_n(packet, 3);
}

bool refuse_data(uint8_t gcrAcqIdx, const AbecsCmdGocData& data) {
    return refuse_if(data.exclist > 1, "invalid value for gocData->exclist: %d", data.exclist)
           || refuse_outside(data.method, ABECS_CMD_GOC_METHOD_MK_WK_DES, ABECS_CMD_GOC_METHOD_DUKPT_TDES,
                             "AbecsCmdGocMethod_E")
           || refuse_if(data.keyidx > kMaxIndex, "invalid value for gocData->keyidx: %d", data.keyidx)
           || refuse_if(data.tpbrs > kMaxIndex, "invalid value for gocData->tpbrs: %d", data.tpbrs)
           || refuse_if(data.mtpbrs > kMaxIndex, "invalid value for gocData->mtpbrs: %d", data.mtpbrs)
           || (gcrAcqIdx == 1
               && refuse_if(data.acqpr.acqpr01.transactionType > kMaxIndex,
                            "invalid value for gocData->acqpr.acqpr01.transactionType (max: 99, requested: %d)",
                            data.acqpr.acqpr01.transactionType))
           || refuse_if(data.tags1len > kMaxTags, "invalid value for gocData->tags1len: %d", data.tags1len)
           || refuse_if(data.tags2len > kMaxTags, "invalid value for gocData->tags2len: %d", data.tags2len);
}

}  // namespace

void abecs_cmd_goc(AbecsComm* pinpad, uint8_t gcrAcqIdx, const AbecsCmdGocData* gocData) {
    if (refuse_null(pinpad, "'pinpad' is NULL")
        || refuse_if(gcrAcqIdx > kMaxIndex, "'gcrAcqIdx' is too big (max: 99, requested: %d)", gcrAcqIdx)
        || refuse_null(gocData, "'gocData' is NULL") || refuse_data(gcrAcqIdx, *gocData)) {
        return;
    }
    send(pinpad, kGoc, Request::fields([&](AbecsPacket* packet) { write_request(packet, gcrAcqIdx, *gocData); }));
}

int32_t abecs_cmd_goc_response(AbecsComm* pinpad, AbecsCmdGocResponse* gocResponse, char* notification) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(gocResponse, "'gocResponse' is NULL")) {
        return kRaised;
    }
    return poll(pinpad, kGoc, Response::fields([&](AbecsPacket* packet) { read_response(packet, *gocResponse); }),
                notification);
}
