// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/cke.h"

#include <array>
#include <cstring>

#include "abecs/cmd/card_data.h"
#include "abecs/cmd/exchange.h"
#include "abecs/comm/comm.h"
#include "abecs/data/flag.h"
#include "core/check.h"
#include "core/raise.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kCke{.id = "CKE"};

constexpr size_t kTrack1 = 76, kTrack2 = 37, kTrack3 = 104;
constexpr size_t kEncipheredTrack2 = 40;  // filling of the card number has made it longer
constexpr size_t kTrackLength = 2, kTrack3Length = 3;

constexpr uint64_t kKeyAnswer = 1 + 2;
constexpr uint64_t kPresenceAnswer = 1 + 1;
constexpr uint64_t kCardAnswer = 1 + kTrackLength + kTrack1 + kTrackLength + kTrack2 + kTrack3Length + kTrack3;
static_assert(kCardAnswer == 225);
static_assert(kCardAnswer == 1 + kTrackLength + kTrack1 + kTrackLength + kEncipheredTrack2 + kTrack3);

constexpr std::array kKeys{
    ABECS_CMD_CKE_KEY_ENTER, ABECS_CMD_CKE_KEY_F1,    ABECS_CMD_CKE_KEY_F2,     ABECS_CMD_CKE_KEY_F3,
    ABECS_CMD_CKE_KEY_F4,    ABECS_CMD_CKE_KEY_CLEAR, ABECS_CMD_CKE_KEY_CANCEL,
};

// The keys that the record has no name for, the arrows, count as ENTER.
AbecsCmdCkeKey_E key_code_from_int(uint64_t code) {
    for (const AbecsCmdCkeKey_E key : kKeys) {
        if (static_cast<uint64_t>(key) == code) { return key; }
    }
    return ABECS_CMD_CKE_KEY_ENTER;
}

bool read_presence(AbecsPacket* packet, const char* field) {
    const uint64_t status = abecs_packet_read_field_n(packet, 1);
    if (status <= 1) { return status == 1; }
    return raise(KOR_RESULT_PROTOCOL_ERROR, "'%s' invalid value: %d", field, static_cast<int>(status)), false;
}

// Returns the length of what the track has become: the PIN pad's own says nothing of that.
template <size_t Size>
uint8_t read_track(const AbecsComm* pinpad, AbecsPacket* packet, char (&track)[Size], size_t width) {
    static_assert(Size - 1 <= UINT8_MAX);
    abecs_packet_read_field_a(packet, track, Size, width, false);
    decipher_card_data(pinpad, track, Size);
    return static_cast<uint8_t>(strnlen(track, Size - 1));
}

// A link can be in the protected layout without having the key. The width of track 2 then follows the one and the
// length of track 3 the other.
void read_tracks(const AbecsComm* pinpad, AbecsPacket* packet, AbecsCmdCkeOut& out) {
    abecs_packet_read_field_n(packet, kTrackLength);
    out.trk1Len = read_track(pinpad, packet, out.track1, kTrack1);
    abecs_packet_read_field_n(packet, kTrackLength);
    out.trk2Len = read_track(pinpad, packet, out.track2, has_pan_key(pinpad) ? kEncipheredTrack2 : kTrack2);
    if (!is_pan_protected(pinpad)) { abecs_packet_read_field_n(packet, kTrack3Length); }
    out.trk3Len = read_track(pinpad, packet, out.track3, kTrack3);
}

void check_event(const AbecsComm* pinpad, AbecsPacket* packet, AbecsCmdCkeOut& out) {
    const uint64_t length = abecs_packet_read_field_n(packet, 3);
    const int received = static_cast<int>(length);
    out.event = static_cast<AbecsCmdCkeEvent_E>(abecs_packet_read_field_n(packet, 1));
    switch (out.event) {
        case ABECS_CMD_CKE_EVENT_KEY:
            if (length != kKeyAnswer) {
                return raise(KOR_RESULT_PROTOCOL_ERROR, "'RSP_LEN1' invalid value  (expected: 3, received: %d)",
                             received);
            }
            out.key = key_code_from_int(abecs_packet_read_field_n(packet, 2));
            return;
        case ABECS_CMD_CKE_EVENT_MAGNETIC_CARD:
            // The text is a number off; applications know it so.
            if (length != kCardAnswer) {
                return raise(KOR_RESULT_PROTOCOL_ERROR, "'RSP_LEN1' invalid value  (expected: 255, received: %d)",
                             received);
            }
            return read_tracks(pinpad, packet, out);
        case ABECS_CMD_CKE_EVENT_ICC:
            if (length != kPresenceAnswer) {
                return raise(KOR_RESULT_PROTOCOL_ERROR, "'RSP_LEN1' invalid value (expected: 2, received: %d)",
                             received);
            }
            out.iccPresent = read_presence(packet, "CKE_ICCSTAT");
            return;
        case ABECS_CMD_CKE_EVENT_CTLS:
            if (length != kPresenceAnswer) {
                return raise(KOR_RESULT_PROTOCOL_ERROR, "'RSP_LEN1' invalid value  (expected: 2, received: %d",
                             received);
            }
            out.ctlsPresent = read_presence(packet, "CKE_CTLSCSTAT");
            return;
        default:
            return raise(KOR_RESULT_PROTOCOL_ERROR, "'CKE_EVENT' invalid value: %d", out.event);
    }
}

}  // namespace

void abecs_cmd_cke(AbecsComm* pinpad, bool keyEnable, bool magEnable, AbecsCmdCkeIccCheckType_E iccCheck,
                   AbecsCmdCkeCtlsCheckType_E ctlsCheck) {
    if (refuse_null(pinpad, "'pinpad' is NULL")
        || refuse_outside(iccCheck, ABECS_CMD_CKE_ICC_CHECK_TYPE_0, ABECS_CMD_CKE_ICC_CHECK_TYPE_2,
                          "AbecsCmdCkeIccCheckType_E")
        || refuse_outside(ctlsCheck, ABECS_CMD_CKE_CTLS_CHECK_TYPE_NOT_SENT, ABECS_CMD_CKE_CTLS_CHECK_TYPE_1,
                          "AbecsCmdCkeCtlsCheckType_E")) {
        return;
    }
    const bool withCtls = ctlsCheck != ABECS_CMD_CKE_CTLS_CHECK_TYPE_NOT_SENT;
    send(pinpad, kCke, Request::fields([&](AbecsPacket* packet) {
             abecs_packet_write_field_n(packet, withCtls ? 4 : 3, 3);
             abecs_packet_write_field_n(packet, is_set(keyEnable) ? 1 : 0, 1);
             abecs_packet_write_field_n(packet, is_set(magEnable) ? 1 : 0, 1);
             abecs_packet_write_field_n(packet, static_cast<uint64_t>(iccCheck), 1);
             if (withCtls) { abecs_packet_write_field_n(packet, static_cast<uint64_t>(ctlsCheck), 1); }
         }));
}

int32_t abecs_cmd_cke_response(AbecsComm* pinpad, AbecsCmdCkeOut* out, char* notification) {
    if (refuse_null(out, "'out' is NULL")) { return kRaised; }
    return poll(pinpad, kCke, Response::fields([&](AbecsPacket* packet) { check_event(pinpad, packet, *out); }),
                notification);
}
