// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gcr.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "abecs/cmd/card_data.h"
#include "abecs/cmd/exchange.h"
#include "abecs/cmd/member_text.h"
#include "abecs/comm/comm.h"
#include "abecs/data/codec.h"
#include "abecs/data/enum_table.h"
#include "abecs/data/flag.h"
#include "core/attempt.h"
#include "core/check.h"
#include "core/raise.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kGcr{.id = "GCR"};
constexpr size_t kRecordLength = 4;  // the acquirer's index, the record's index
constexpr size_t kMaxRecords = 99;
constexpr size_t kLength = 2 + 2 + 12 + 3 * 2 + 3 * 2 + kVersionWidth + 2;
static_assert(kLength == 40);
constexpr size_t kTrack2Width = 37;
constexpr size_t kProtectedTrack2Width = 40;

constexpr auto kCardTypes = enum_table<Named<AbecsCmdGcrCardType_E>>({
    {QUORVEL_NAMED(ABECS_CMD_GCR_CARD_TYPE_MAGNETIC)},
    {QUORVEL_NAMED(ABECS_CMD_GCR_CARD_TYPE_ICC_EMV)},
    {QUORVEL_NAMED(ABECS_CMD_GCR_CARD_TYPE_CTLS_MAGSTRIPE)},
    {QUORVEL_NAMED(ABECS_CMD_GCR_CARD_TYPE_CTLS_EMV)},
});

constexpr auto kChipStats = enum_table<Named<AbecsCmdGcrStatChip_E>>({
    {QUORVEL_NAMED(ABECS_CMD_GCR_STATCHIP_SUCCESS)},
    {QUORVEL_NAMED(ABECS_CMD_GCR_STATCHIP_ERROR_FALLBACK)},
    {QUORVEL_NAMED(ABECS_CMD_GCR_STATCHIP_NOT_SUPPORTED)},
});

bool refuse_moment(const AbecsCmdGcrData& data) {
    bool refused = true;
    attempt([&] {
        abecs_data_validate_date(&data.date);
        abecs_data_validate_time(&data.time);
        refused = false;
    }).run();
    return refused;
}

// The first record that was listed before already, or null.
const char* find_duplicate(const char* records, size_t count) {
    for (size_t i = 1; i < count; ++i) {
        const char* record = records + i * kRecordLength;
        for (const char* earlier = records; earlier != record; earlier += kRecordLength) {
            if (std::memcmp(earlier, record, kRecordLength) == 0) { return record; }
        }
    }
    return nullptr;
}

// None after a raise.
std::optional<size_t> count_records(const char* records) {
    if (records == nullptr) { return 0; }
    const size_t length = std::strlen(records);
    if (refuse_if(length % kRecordLength != 0, "Invalid length for aidRecIds: %zu", length)) { return std::nullopt; }
    size_t bad = 0;
    if (!abecs_data_is_alphanumeric_field(records, length, &bad)) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid char at aidRecIds[%zu]: (0x%02X)", bad,
                     codec::shown(records[bad])),
               std::nullopt;
    }
    const size_t count = length / kRecordLength;
    if (refuse_if(count > kMaxRecords, "Too many records")) { return std::nullopt; }
    if (const char* record = find_duplicate(records, count)) {
        char id[kRecordLength + 1]{};
        std::memcpy(id, record, kRecordLength);
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Duplicate record ID: %s", id), std::nullopt;
    }
    return count;
}

void write_pair(AbecsPacket* packet, uint8_t number) { abecs_packet_write_field_n(packet, number, 2); }

void write_request(AbecsPacket* packet, const AbecsCmdGcrData& data, const char* records, size_t count) {
    abecs_packet_write_field_n(packet, kLength + kRecordLength * count, 3);
    write_pair(packet, data.acqIdxReq);
    write_pair(packet, data.appTypReq);
    abecs_packet_write_field_n(packet, data.amount, 12);
    for (const uint8_t part : {data.date.year, data.date.month, data.date.day}) { write_pair(packet, part); }
    for (const uint8_t part : {data.time.hours, data.time.minutes, data.time.seconds}) { write_pair(packet, part); }
    abecs_packet_write_field_a(packet, WholeMemberText(data.tabVer).text, kVersionWidth, false);
    abecs_packet_write_field_n(packet, count, 2);
    if (count != 0) { abecs_packet_write_field_b(packet, records, kRecordLength * count); }
    // Behind what the length covers; left out, the PIN pad reads contactless cards too.
    if (!is_set(data.ctlsOn)) { abecs_packet_write_field_n(packet, 0, 1); }
}

template <size_t Size>
void read_text(AbecsPacket* packet, char (&to)[Size]) {
    abecs_packet_read_field_a(packet, to, Size, Size - 1, false);
}

uint8_t read_number(AbecsPacket* packet, size_t width) {
    return static_cast<uint8_t>(abecs_packet_read_field_n(packet, width));
}

template <size_t Size>
uint8_t length_of(const char (&text)[Size]) {
    static_assert(Size <= UINT8_MAX);
    return static_cast<uint8_t>(std::strlen(text));
}

void read_tracks(AbecsPacket* packet, const AbecsComm* pinpad, AbecsCmdGcrResponse& out) {
    out.track1Len = read_number(packet, 2);
    read_text(packet, out.track1);
    if (decipher_card_data(pinpad, out.track1, out.track1Len)) { out.track1Len = length_of(out.track1); }

    out.track2Len = read_number(packet, 2);
    const size_t width = is_pan_protected(pinpad) ? kProtectedTrack2Width : kTrack2Width;
    abecs_packet_read_field_a(packet, out.track2, sizeof out.track2, width, false);
    if (decipher_card_data(pinpad, out.track2, out.track2Len)) { out.track2Len = length_of(out.track2); }

    // The three bytes by which a protected track 2 is wider are those of this length, so it is not sent with one.
    if (!is_pan_protected(pinpad)) { abecs_packet_read_field_n(packet, 3); }
    read_text(packet, out.track3);
    out.track3Len = length_of(out.track3);
    if (decipher_card_data(pinpad, out.track3, out.track3Len)) { out.track3Len = length_of(out.track3); }
}

// The length of a deciphered number goes where callers have always found it, and panLen stays what was received.
void read_pan(AbecsPacket* packet, const AbecsComm* pinpad, AbecsCmdGcrResponse& out) {
    out.panLen = read_number(packet, 2);
    read_text(packet, out.pan);
    if (decipher_card_data(pinpad, out.pan, out.panLen)) { out.track3Len = length_of(out.pan); }
}

void read_acquirer_data(AbecsPacket* packet, AbecsCmdGcrResponse& out) {
    if (out.acqIdx == 1) {
        const size_t length = read_number(packet, 2);
        abecs_packet_read_field_h(packet, out.acqRd01Data, sizeof out.acqRd01Data, sizeof out.acqRd01Data - 1);
        out.acqRd01Data[std::min(length, sizeof out.acqRd01Data - 1)] = '\0';
        read_text(packet, out.acqRd01Text1);
        read_text(packet, out.acqRd01Text2);
    }
    if (out.acqIdx == 2) {
        abecs_packet_read_field_h(packet, out.acqRd02Data, sizeof out.acqRd02Data, sizeof out.acqRd02Data - 1);
    }
}

void read_response(AbecsPacket* packet, const AbecsComm* pinpad, AbecsCmdGcrResponse& out) {
    abecs_packet_read_field_n(packet, 3);
    out.cardType = read_number(packet, 2);
    out.statChip = static_cast<AbecsCmdGcrStatChip_E>(read_number(packet, 1));
    out.appType = read_number(packet, 2);
    out.acqIdx = read_number(packet, 2);
    read_text(packet, out.recIdx);
    read_tracks(packet, pinpad, out);
    read_pan(packet, pinpad, out);
    out.panSeqNum = read_number(packet, 2);
    read_text(packet, out.appLabel);
    out.serviceCode = static_cast<uint16_t>(abecs_packet_read_field_n(packet, 3));
    read_text(packet, out.cardholderName);
    out.expYear = read_number(packet, 2);
    out.expMonth = read_number(packet, 2);
    out.expDay = read_number(packet, 2);
    abecs_packet_read_field_b(packet, out.extData, sizeof out.extData, sizeof out.extData - 1);
    out.extData[sizeof out.extData - 1] = 0;
    out.issuerCountry = static_cast<uint16_t>(abecs_packet_read_field_n(packet, 3));
    abecs_packet_read_field_n(packet, 3);
    read_acquirer_data(packet, out);
}

}  // namespace

const char* abecs_cmd_gcr_card_type_to_string(AbecsCmdGcrCardType_E cardType) {
    const auto* row = find_row(kCardTypes, cardType);
    if (row == nullptr) { return raise(KOR_RESULT_RUNTIME_ERROR, "Unhandled case"), ""; }
    return row->name;
}

const char* abecs_cmd_gcr_stat_chip_to_string(AbecsCmdGcrStatChip_E statChip) {
    const auto* row = find_row(kChipStats, statChip);
    if (row == nullptr) { return raise(KOR_RESULT_RUNTIME_ERROR, "Unhandled case"), ""; }
    return row->name;
}

KorResult_E abecs_cmd_gcr(AbecsComm* pinpad, const AbecsCmdGcrData* gcrData, const char* aidRecIds) {
    constexpr KorResult_E kRefused = KOR_RESULT_ILLEGAL_ARGUMENT;
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(gcrData, "'gcrData' is NULL")
        || refuse_if(gcrData->acqIdxReq > kMaxIndex, "gcrData->acqIdxReq (%d) is out of range", gcrData->acqIdxReq)
        || refuse_if(gcrData->appTypReq > kMaxIndex, "gcrData->appTypReq (%d) is out of range", gcrData->appTypReq)
        || refuse_moment(*gcrData)
        || refuse_if(gcrData->appTypReq != 0 && aidRecIds != nullptr,
                     "AID record ids where supplied and GCR_APPTYPE is not zero")) {
        return kRefused;
    }
    const std::optional<size_t> count = count_records(aidRecIds);
    if (!count) { return kRefused; }
    return send_for_result(pinpad, kGcr, Request::fields([&](AbecsPacket* packet) {
                               write_request(packet, *gcrData, aidRecIds, *count);
                           }));
}

KorResult_E abecs_cmd_gcr_empty(AbecsComm* pinpad) {
    constexpr KorResult_E kRefused = KOR_RESULT_ILLEGAL_ARGUMENT;
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return kRefused; }
    return send_for_result(pinpad, kGcr, Request::bare());
}

int32_t abecs_cmd_gcr_response(AbecsComm* pinpad, AbecsCmdGcrResponse* gcrResponse, char* notification) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(gcrResponse, "'gcrResponse' is NULL")) {
        return kRaised;
    }
    return poll(pinpad, kGcr,
                Response::fields([&](AbecsPacket* packet) { read_response(packet, pinpad, *gcrResponse); }),
                notification);
}
