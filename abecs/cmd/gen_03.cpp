// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cstring>

#include "abecs/cmd/gen.h"
#include "abecs/data/wk_pan.h"
#include "core/attempt.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/data.h"
#include "quorvel/kor/string.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr size_t kMaxData = 256;
constexpr size_t kDataStep = 16;  // the digits of one block

bool is_data_size(size_t size) { return size <= kMaxData && size % kDataStep == 0; }

void read_data(AbecsPacket* packet, AbecsCmdGen0303RspData& out, size_t length) {
    out.dataLen = 0;
    if (length < kKsnWidth || length > kKsnWidth + kMaxData) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "(GEN/03/03) Invalid GEN_OUTLEN: %zu", length);
    }
    abecs_packet_read_field_h(packet, out.ksn, sizeof out.ksn, kKsnWidth);
    const size_t width = length - kKsnWidth;
    read_digits(packet, out.data, width, out.dataLen, width);
}

}  // namespace

int32_t abecs_cmd_gen_03_02(AbecsComm* pinpad, const char* tags, AbecsCmdGenTagsOut* out) {
    if (refuse_tags(pinpad, tags, out)) { return kRaised; }
    const size_t width = kor_string_len(tags);
    return call_gen(
        pinpad, {3, "02"}, width, [&](AbecsPacket* packet) { abecs_packet_write_field_h(packet, tags, width); },
        [&](AbecsPacket* packet, size_t digits) { read_digits(packet, out->data, digits, out->len, digits); });
}

int32_t abecs_cmd_gen_03_03(AbecsComm* pinpad, const AbecsCmdGen0303CmdData* cmdData,
                            AbecsCmdGen0303RspData* responseData) {
    constexpr uint64_t kMethod = 3;
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(cmdData, "'cmdData' is NULL")
        || refuse_if(cmdData->idx > kMaxIndex, "Invalid 'cmdData->idx': %d", cmdData->idx)) {
        return kRaised;
    }
    const size_t size = cmdData->input.size;
    if (refuse_if(!is_data_size(size), "Invalid length for 'cmdData->input': %zu", size)
        || refuse_null(responseData, "'responseData' is NULL")) {
        return kRaised;
    }
    const auto write = [&](AbecsPacket* packet) {
        abecs_packet_write_field_n(packet, kMethod, 1);
        abecs_packet_write_field_n(packet, cmdData->idx, 2);
        write_digits(packet, cmdData->input.data, size);
    };
    return call_gen(pinpad, {3, "03"}, 1 + 2 + size, write,
                    [&](AbecsPacket* packet, size_t length) { read_data(packet, *responseData, length); });
}

AbecsCmdGen0303Data* abecs_cmd_gen_03_03_encode_data(const AbecsCmdGen0303Data* clearData, const AbecsWkPan* wkPan,
                                                     AbecsCmdGen0303Data* out) {
    if (refuse_null(clearData, "Missing 'clearData'")) { return nullptr; }
    const size_t size = clearData->size;
    if (refuse_if(!is_data_size(size), "Invalid length for 'clearData': %zu", size)
        || refuse_null(wkPan, "Missing 'wkPan'") || refuse_null(out, "Missing 'out'")
        || refuse_outside(wkPan->type, ABECS_WK_PAN_TYPE_DES, ABECS_WK_PAN_TYPE_TDES_RSA, "AbecsWkPanType_E")) {
        return nullptr;
    }
    uint8_t area[kMaxData / 2]{};
    bool done = false;
    attempt([&] {
        abecs_data_from_hex2(clearData->data, size, area, sizeof area);
        if (!decipher(*wkPan, area, sizeof area)) { return; }
        abecs_data_to_hex(area, size / 2, out->data, sizeof out->data);
        out->size = static_cast<uint32_t>(size);
        done = true;
    }).cleanup([&] {
          explicit_bzero(area, sizeof area);
      }).run();
    return done ? out : nullptr;
}
