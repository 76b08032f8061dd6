// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/enb.h"

#include <cstring>

#include "abecs/cmd/exchange.h"
#include "abecs/data/mk.h"
#include "abecs/data/wk_pan.h"
#include "core/attempt.h"
#include "core/check.h"
#include "quorvel/abecs/data.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kEnb{.id = "ENB"};
constexpr size_t kDataWidth = 16;
constexpr size_t kRequestLength = 1 + 2 + kKeyWidth + kDataWidth;
static_assert(kRequestLength == 51);

// `transform` works on the bytes of a hexadecimal text, in place; its result is written as a text again. A shorter text
// is one of which the last bytes are zero.
template <size_t Width, typename Transform>
char* transformed(const char* hex, char* out, Transform transform) {
    uint8_t bytes[Width / 2]{};
    bool done = false;
    attempt([&] {
        abecs_data_from_hex(hex, bytes, sizeof bytes);
        if (!transform(bytes, sizeof bytes)) { return; }
        abecs_data_to_hex(bytes, sizeof bytes, out, Width + 1);
        done = true;
    }).cleanup([&] {
          explicit_bzero(bytes, sizeof bytes);
      }).run();
    return done ? out : nullptr;
}

void write_data(AbecsPacket* packet, const AbecsCmdEnbCmdData& data) {
    abecs_packet_write_field_n(packet, kRequestLength, 3);
    abecs_packet_write_field_n(packet, static_cast<uint64_t>(data.method), 1);
    abecs_packet_write_field_n(packet, data.keyIdx, 2);
    abecs_packet_write_field_h(packet, data.wkEnc, kKeyWidth);
    abecs_packet_write_field_h(packet, data.data, kDataWidth);
}

void read_block(AbecsPacket* packet, char* out) {
    abecs_packet_read_field_n(packet, 3);
    abecs_packet_read_field_h(packet, out, kDataWidth + 1, kDataWidth);
}

}  // namespace

char* abecs_cmd_enb_encrypt_wk(const char* clearWk, const AbecsMk* mk, char* out) {
    if (refuse_null(clearWk, "Missing 'clearWk'") || refuse_null(mk, "Missing 'mk'")
        || refuse_null(out, "Missing 'out'")
        || refuse_outside(mk->type, ABECS_MK_TYPE_DES, ABECS_MK_TYPE_TDES, "AbecsMkType_E")) {
        return nullptr;
    }
    return transformed<kKeyWidth>(clearWk, out,
                                  [&](uint8_t* bytes, size_t size) { return encipher(*mk, bytes, size); });
}

char* abecs_cmd_enb_encode_data(const char* clearData, const AbecsWkPan* wkPan, char* out) {
    if (refuse_null(clearData, "Missing 'clearData'") || refuse_null(wkPan, "Missing 'wkPan'")
        || refuse_null(out, "Missing 'out'")) {
        return nullptr;
    }
    if (refuse_outside(wkPan->type, ABECS_WK_PAN_TYPE_DES, ABECS_WK_PAN_TYPE_TDES_RSA, "AbecsWkPanType_E")) {
        return nullptr;
    }
    return transformed<kDataWidth>(clearData, out,
                                   [&](uint8_t* bytes, size_t size) { return decipher(*wkPan, bytes, size); });
}

int32_t abecs_cmd_enb(AbecsComm* pinpad, const AbecsCmdEnbCmdData* cmdData, char* out) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(cmdData, "'cmdData' is NULL")
        || refuse_null(out, "'out' is NULL")) {
        return kRaised;
    }
    if (refuse_outside(cmdData->method, ABECS_CMD_ENB_METHOD_0, ABECS_CMD_ENB_METHOD_1, "AbecsCmdEnbMethod_E")) {
        return kRaised;
    }
    return call(pinpad, kEnb, Request::fields([&](AbecsPacket* packet) { write_data(packet, *cmdData); }),
                Response::fields([&](AbecsPacket* packet) { read_block(packet, out); }));
}
