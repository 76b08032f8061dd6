// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/gen.h"
#include "abecs/cmd/member_text.h"
#include "abecs/data/codec.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/kor/string.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kGen0403{.id = "GEN", .name = "GEN/04/03"};

constexpr uint8_t kMaxSlot = 8;
constexpr size_t kMaxAtr = 36;
constexpr size_t kHeaderWidth = 8;
constexpr uint16_t kMaxApduData = 256;

// The cut counts the bytes of the ATR where the text has two digits for each: half of it is given.
void read_slot(AbecsPacket* packet, AbecsCmdGen0401RspData& out) {
    out.atrLen = 0;
    out.status1 = static_cast<uint8_t>(abecs_packet_read_field_n(packet, 1));
    out.status2 = static_cast<uint32_t>(abecs_packet_read_field_n(packet, 1));
    const auto length = static_cast<uint8_t>(abecs_packet_read_field_n(packet, 2));
    if (length > kMaxAtr) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "GEN0401_ATRLEN is too big (max: 36, returned: %d)", length);
    }
    read_digits(packet, out.atr, 2 * kMaxAtr, out.atrLen, length);
    out.atr[length] = '\0';
}

void write_apdu(AbecsPacket* packet, const AbecsCmdGen0402CmdData& data) {
    abecs_packet_write_field_n(packet, data.slot, 1);
    write_digits(packet, data.apduHeader, kHeaderWidth);
    abecs_packet_write_field_n(packet, data.lc, 3);
    write_digits(packet, data.apduData, size_t{2} * data.lc);
    abecs_packet_write_field_n(packet, data.le, 3);
}

void read_apdu(AbecsPacket* packet, AbecsCmdGen0402RspData& out) {
    out.la = 0;
    out.status = static_cast<uint8_t>(abecs_packet_read_field_n(packet, 1));
    abecs_packet_read_field_h(packet, out.sw, sizeof out.sw, kStatusWordWidth);
    const auto length = static_cast<uint16_t>(abecs_packet_read_field_n(packet, 3));
    if (length > kMaxApduData) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "G0402_LA is too big (max: 256, returned: %d)", length);
    }
    read_digits(packet, out.apduData, size_t{2} * length, out.la, length);
}

bool refuse_pin(const AbecsCmdGen0403CmdData& data) {
    const int min = data.pinMinDigits;
    const int max = data.pinMaxDigits;
    return refuse_if(data.slot > kMaxSlot, "'cmdData->slot' is invalid: %d", data.slot)
           || refuse_if(!codec::is_hex(data.format), "'cmdData->format' is invalid: %c", data.format)
           || refuse_if(min > kMaxIndex, "'cmdData->pinMinDigits' is invalid: %d", min)
           || refuse_if(max > kMaxIndex, "'cmdData->pinMaxDigits' is invalid: %d", max)
           || refuse_if(min > max, "'cmdData->pinMinDigits (%d)' is greater than cmdData->pinMaxDigits (%d)", min, max);
}

void write_pin(AbecsPacket* packet, const AbecsCmdGen0403CmdData& data) {
    abecs_packet_write_field_n(packet, data.slot, 1);
    write_digits(packet, data.apduHeader, kHeaderWidth);
    abecs_packet_write_byte(packet, static_cast<uint8_t>(codec::to_upper(data.format)));
    abecs_packet_write_field_n(packet, data.pinMinDigits, 2);
    abecs_packet_write_field_n(packet, data.pinMaxDigits, 2);
    abecs_packet_write_field_s(packet, WholeMemberText(data.message).text, kMessageWidth, false);
}

void read_verdict(AbecsPacket* packet, AbecsCmdGen0403RspData& out) {
    read_gen_head(packet);
    out.status = static_cast<uint8_t>(abecs_packet_read_field_n(packet, 1));
    abecs_packet_read_field_h(packet, out.sw, sizeof out.sw, kStatusWordWidth);
}

}  // namespace

int32_t abecs_cmd_gen_04_01(AbecsComm* pinpad, const AbecsCmdGen0401CmdData* cmdData,
                            AbecsCmdGen0401RspData* responseData) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(cmdData, "'cmdData' is NULL")
        || refuse_null(responseData, "'responseData' is NULL")
        || refuse_outside(cmdData->oper, ABECS_CMD_GEN_04_01_OPER_1, ABECS_CMD_GEN_04_01_OPER_4,
                          "AbecsCmdGen0401Oper_E")
        || refuse_if(cmdData->slot > kMaxSlot, "Invalid value for cmdData->slot: %d", cmdData->slot)) {
        return kRaised;
    }
    const auto write = [&](AbecsPacket* packet) {
        abecs_packet_write_field_n(packet, static_cast<uint64_t>(cmdData->oper), 1);
        abecs_packet_write_field_n(packet, cmdData->slot, 1);
    };
    return call_gen(pinpad, {4, "01"}, 1 + 1, write,
                    [&](AbecsPacket* packet, size_t) { read_slot(packet, *responseData); });
}

int32_t abecs_cmd_gen_04_02(AbecsComm* pinpad, const AbecsCmdGen0402CmdData* cmdData,
                            AbecsCmdGen0402RspData* responseData) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(cmdData, "'cmdData' is NULL")
        || refuse_null(responseData, "'responseData' is NULL")
        || refuse_if(cmdData->slot > kMaxSlot, "'cmdData->slot' is invalid: %d", cmdData->slot)
        || refuse_if(cmdData->le > kMaxApduData, "'cmdData->le' is invalid: %d", cmdData->le)) {
        return kRaised;
    }
    return call_gen(
        pinpad, {4, "02"}, 1 + kHeaderWidth + 3 + size_t{2} * cmdData->lc + 3,
        [&](AbecsPacket* packet) { write_apdu(packet, *cmdData); },
        [&](AbecsPacket* packet, size_t) { read_apdu(packet, *responseData); });
}

KorResult_E abecs_cmd_gen_04_03(AbecsComm* pinpad, const AbecsCmdGen0403CmdData* cmdData) {
    constexpr KorResult_E kRefused = KOR_RESULT_ILLEGAL_ARGUMENT;
    constexpr size_t kLength = 1 + kHeaderWidth + 1 + 2 + 2 + kMessageWidth;
    static_assert(kSubCommandWidth + kLength == 48);
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(cmdData, "'cmdData' is NULL")) { return kRefused; }
    if (refuse_pin(*cmdData)) { return kRefused; }
    return send_for_result(pinpad, kGen0403, Request::fields([&](AbecsPacket* packet) {
                               write_gen_head(packet, {4, "03"}, kLength);
                               write_pin(packet, *cmdData);
                           }));
}

int32_t abecs_cmd_gen_04_03_response(AbecsComm* pinpad, AbecsCmdGen0403RspData* rspDataOut, char* notification) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(rspDataOut, "'rspDataOut' is NULL")) { return kRaised; }
    return poll(pinpad, kGen0403, Response::fields([&](AbecsPacket* packet) { read_verdict(packet, *rspDataOut); }),
                notification);
}

int32_t abecs_cmd_gen_04_04(AbecsComm* pinpad, const char* tags, AbecsCmdGenTagsOut* out) {
    if (refuse_tags(pinpad, tags, out)) { return kRaised; }
    const size_t width = kor_string_len(tags);
    const auto write = [&](AbecsPacket* packet) {
        abecs_packet_write_field_n(packet, width / 2, 3);
        abecs_packet_write_field_h(packet, tags, width);
    };
    return call_gen(pinpad, {4, "04"}, 3 + width, write, [&](AbecsPacket* packet, size_t bytes) {
        read_digits(packet, out->data, 2 * bytes, out->len, bytes);
    });
}
