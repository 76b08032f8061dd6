// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gpn.h"

#include <cstring>

#include "abecs/cmd/exchange.h"
#include "core/check.h"
#include "core/raise.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kGpn{.id = "GPN"};
constexpr size_t kPanWidth = 19, kPinBlockWidth = 16;
constexpr size_t kMinPan = 2, kMaxEntries = 9;
constexpr int kMinDigits = 4, kMaxDigits = 99;

constexpr size_t kFixedLength = 1 + 2 + kKeyWidth + 2 + kPanWidth + 1;
constexpr size_t kEntryLength = 2 + 2 + kMessageWidth;
static_assert(kFixedLength == 57 && kEntryLength == 36);

// Counts no further than the array reaches, in which the caller may have left no room for a NUL.
template <size_t Size>
size_t length_of(const char (&text)[Size]) {
    return strnlen(text, Size);
}

bool has_working_key(const AbecsCmdGpnCmdData& data) {
    return data.method == ABECS_CMD_GPN_METHOD_MK_WK_DES || data.method == ABECS_CMD_GPN_METHOD_MK_WK_TDES;
}

bool refuse_key(const AbecsCmdGpnCmdData& data) {
    size_t expected = 0;
    switch (data.method) {
        case ABECS_CMD_GPN_METHOD_MK_WK_DES:
            expected = 16;
            break;
        case ABECS_CMD_GPN_METHOD_MK_WK_TDES:
            expected = 32;
            break;
        case ABECS_CMD_GPN_METHOD_DUKPT_DES:
        case ABECS_CMD_GPN_METHOD_DUKPT_TDES:
            return false;
        default:
            return raise(KOR_RESULT_RUNTIME_ERROR, "Unhandled case"), true;
    }
    const size_t length = length_of(data.wkEnc);
    return refuse_if(length != expected, "Invalid length for 'cmdData->wkEnc': %zu (expected: %zu)", length, expected);
}

bool refuse_entry(const AbecsCmdGpnEntry& entry, size_t i) {
    const size_t length = length_of(entry.msg);
    return refuse_if(entry.min < kMinDigits || entry.min > kMaxDigits,
                     "Invalid value for 'cmdData->entries[%zu].min': %d", i, entry.min)
           || refuse_if(entry.max < entry.min || entry.max > kMaxDigits,
                        "Invalid value for 'cmdData->entries[%zu].max': %d", i, entry.max)
           || refuse_if(length > kMessageWidth, "Invalid length for 'cmdData->entries[%zu].msg': %zu", i, length);
}

bool refuse_data(const AbecsCmdGpnCmdData& data) {
    const size_t panLength = length_of(data.pan);
    if (refuse_outside(data.method, ABECS_CMD_GPN_METHOD_MK_WK_DES, ABECS_CMD_GPN_METHOD_DUKPT_TDES,
                       "AbecsCmdGpnMethod_E")
        || refuse_if(data.keyIdx > kMaxIndex, "Invalid value for 'cmdData->keyIdx': %d", data.keyIdx)
        || refuse_key(data)
        || refuse_if((panLength != 0 && panLength < kMinPan) || panLength > kPanWidth,
                     "Invalid length for 'cmdData->pan': %zu", panLength)
        || refuse_if(data.entryCount == 0 || data.entryCount > kMaxEntries,
                     "Invalid length for 'cmdData->entryCount': %d", data.entryCount)) {
        return true;
    }
    for (size_t i = 0; i < data.entryCount; ++i) {
        if (refuse_entry(data.entries[i], i)) { return true; }
    }
    return false;
}

void write_data(AbecsPacket* packet, const AbecsCmdGpnCmdData& data) {
    abecs_packet_write_field_n(packet, kFixedLength + kEntryLength * data.entryCount, 3);
    abecs_packet_write_field_n(packet, static_cast<uint64_t>(data.method), 1);
    abecs_packet_write_field_n(packet, data.keyIdx, 2);
    abecs_packet_write_field_h(packet, has_working_key(data) ? data.wkEnc : "", kKeyWidth);
    abecs_packet_write_field_n(packet, length_of(data.pan), 2);
    abecs_packet_write_field_a(packet, data.pan, kPanWidth, false);
    abecs_packet_write_field_n(packet, data.entryCount, 1);
    for (size_t i = 0; i < data.entryCount; ++i) {
        abecs_packet_write_field_n(packet, data.entries[i].min, 2);
        abecs_packet_write_field_n(packet, data.entries[i].max, 2);
        abecs_packet_write_field_s(packet, data.entries[i].msg, kMessageWidth, false);
    }
}

void read_data(AbecsPacket* packet, AbecsCmdGpnRspData& out) {
    abecs_packet_read_field_n(packet, 3);
    abecs_packet_read_field_h(packet, out.pinBlk, sizeof out.pinBlk, kPinBlockWidth);
    abecs_packet_read_field_h(packet, out.ksn, sizeof out.ksn, kKsnWidth);
}

}  // namespace

void abecs_cmd_gpn(AbecsComm* pinpad, const AbecsCmdGpnCmdData* cmdData) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(cmdData, "'cmdData' is NULL")) { return; }
    if (refuse_data(*cmdData)) { return; }
    send(pinpad, kGpn, Request::fields([&](AbecsPacket* packet) { write_data(packet, *cmdData); }));
}

int32_t abecs_cmd_gpn_response(AbecsComm* pinpad, AbecsCmdGpnRspData* rspDataOut, char* notification) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(rspDataOut, "'rspDataOut' is NULL")) { return kRaised; }
    return poll(pinpad, kGpn, Response::fields([&](AbecsPacket* packet) { read_data(packet, *rspDataOut); }),
                notification);
}
