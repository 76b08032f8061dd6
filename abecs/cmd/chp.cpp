// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/chp.h"

#include <cstring>

#include "abecs/cmd/exchange.h"
#include "abecs/cmd/member_text.h"
#include "core/check.h"
#include "quorvel/kor/enum.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kChp{.id = "CHP"};
constexpr size_t kLength = 1 + 1 + 3;
constexpr size_t kPinLength = 1 + kMessageWidth;
constexpr size_t kPinCommandLength = 8;  // CLA, INS, P1 and P2 of the card's command
constexpr size_t kOutSize = 515;

bool takes_command(AbecsCmdChpOper_E oper) { return oper == ABECS_CMD_CHP_OPER_2 || oper == ABECS_CMD_CHP_OPER_3; }
bool takes_pin(AbecsCmdChpOper_E oper) { return oper == ABECS_CMD_CHP_OPER_3; }

bool is_pin_format(AbecsCmdChpPinFmt_E format) {
    return kor_enum_is_valid_range(format, ABECS_CMD_CHP_PIN_FMT_0, ABECS_CMD_CHP_PIN_FMT_2)
           || format == ABECS_CMD_CHP_PIN_FMT_9;
}

size_t command_length(const AbecsCmdChpParam& param) {
    return takes_command(param.oper) ? strnlen(param.chpCmd, sizeof param.chpCmd - 1) : 0;
}

void write_request(AbecsPacket* packet, const AbecsCmdChpParam& param) {
    const size_t length = command_length(param);
    abecs_packet_write_field_n(packet, kLength + length + (takes_pin(param.oper) ? kPinLength : 0), 3);
    abecs_packet_write_field_n(packet, static_cast<uint64_t>(param.slot), 1);
    abecs_packet_write_field_n(packet, static_cast<uint64_t>(param.oper), 1);
    abecs_packet_write_field_n(packet, length / 2, 3);
    abecs_packet_write_field_h_cdata(packet, param.chpCmd, length, length);
    if (!takes_pin(param.oper)) { return; }
    abecs_packet_write_field_n(packet, static_cast<uint64_t>(param.pinFmt), 1);
    abecs_packet_write_field_s(packet, MemberText(param.message).text, kMessageWidth, false);
}

void read_response(AbecsPacket* packet, char* out) {
    const uint64_t length = abecs_packet_read_field_n(packet, 3);
    const size_t count = length != 0 ? static_cast<size_t>(abecs_packet_read_field_n(packet, 3)) : 0;
    abecs_packet_read_field_h(packet, out, kOutSize, 2 * count);
}

}  // namespace

void abecs_cmd_chp(AbecsComm* pinpad, const AbecsCmdChpParam* param) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(param, "'param' is NULL")
        || refuse_outside(param->slot, ABECS_CMD_CHP_SLOT_0, ABECS_CMD_CHP_SLOT_9, "AbecsCmdChpSlot_E")
        || refuse_outside(param->oper, ABECS_CMD_CHP_OPER_0, ABECS_CMD_CHP_OPER_3, "AbecsCmdChpOper_E")) {
        return;
    }
    const size_t length = command_length(*param);
    if (refuse_if(length % 2 != 0 || (takes_pin(param->oper) && length != kPinCommandLength),
                  "Length of 'param->chpCmd' is invalid: %zu", length)) {
        return;
    }
    // The other operations leave it unset.
    if (takes_pin(param->oper)
        && refuse_if(!is_pin_format(param->pinFmt), "Invalid enumerator for %s: %d", "AbecsCmdChpPinFmt_E",
                     param->pinFmt)) {
        return;
    }
    send(pinpad, kChp, Request::fields([&](AbecsPacket* packet) { write_request(packet, *param); }));
}

int32_t abecs_cmd_chp_response(AbecsComm* pinpad, char* out, char* notification) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(out, "'out' is NULL")) { return kRaised; }
    return poll(pinpad, kChp, Response::fields([&](AbecsPacket* packet) { read_response(packet, out); }), notification);
}
