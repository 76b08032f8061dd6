// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gin.h"

#include <cstring>

#include "abecs/cmd/exchange.h"
#include "core/check.h"
#include "core/raise.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr Command kGin{.id = "GIN"};
constexpr uint32_t kLength00 = 20 + 19 + 1 + 20 + 4 + 16 + 20;
constexpr uint32_t kLengthOther = 42;
static_assert(kLength00 == 100);

// The record's text fields are one character longer than the fields of the answer.
template <size_t Size>
void read_text(AbecsPacket* packet, char (&to)[Size]) {
    abecs_packet_read_field_a(packet, to, Size, Size - 1, false);
}

template <size_t... Sizes>
void read_texts(AbecsPacket* packet, char (&... to)[Sizes]) {
    (read_text(packet, to), ...);
}

uint8_t read_number(AbecsPacket* packet) { return static_cast<uint8_t>(abecs_packet_read_field_n(packet, 2)); }

// A one-character field that says yes with `yes` and no with a blank, which the reader trims away.
bool read_flag(AbecsPacket* packet, char yes, const char* field) {
    char text[2];
    read_text(packet, text);
    if (text[0] != yes && text[0] != '\0') {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "Invalid value for %s: 0x%02X", field,
                     static_cast<unsigned char>(text[0])),
               false;
    }
    return text[0] == yes;
}

// "MODEL;DETAIL;..." in one field.
void read_model(AbecsPacket* packet, char (&model)[20], char (&detail)[20]) {
    read_text(packet, model);
    detail[0] = '\0';
    char* separator = std::strchr(model, ';');
    if (separator == nullptr) { return; }
    *separator = '\0';
    const char* rest = separator + 1;
    const size_t length = std::strcspn(rest, ";");
    std::memcpy(detail, rest, length);
    detail[length] = '\0';
}

void read_index_00(AbecsPacket* packet, decltype(AbecsCmdGinOut::idx00)& out) {
    read_text(packet, out.mnName);
    read_model(packet, out.model, out.modelDetail);
    out.ctlsSup = read_flag(packet, 'C', "GIN_CTLSSUP");
    read_texts(packet, out.soVer, out.specVer, out.manVers, out.serNum);
}

void read_index_02(AbecsPacket* packet, decltype(AbecsCmdGinOut::idx02)& out) {
    read_texts(packet, out.text1, out.text2, out.text3, out.text4, out.text5);
    out.number = read_number(packet);
}

void read_index_03(AbecsPacket* packet, decltype(AbecsCmdGinOut::idx03)& out) {
    read_texts(packet, out.text1, out.text2, out.text3, out.text4, out.text5, out.text6, out.text7, out.text8);
    out.dukpt = read_flag(packet, 'T', "GIN_DUKPT");
    out.number = read_number(packet);
}

void read_index_other(AbecsPacket* packet, decltype(AbecsCmdGinOut::idxOther)& out) {
    read_texts(packet, out.text1, out.text2, out.text3, out.text4);
    out.number = read_number(packet);
}

void read_layout(AbecsPacket* packet, uint8_t acqIdx, AbecsCmdGinOut& out) {
    const auto length = static_cast<uint32_t>(abecs_packet_read_field_n(packet, 3));
    if (acqIdx == 0 && length != kLength00) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "Invalid RSP_LEN1 for GIN_ACQIDX == 0 (expected 100, read: %u)",
                     length);
    }
    if (acqIdx != 0 && length != kLengthOther) {
        return raise(KOR_RESULT_PROTOCOL_ERROR, "Invalid RSP_LEN1 for GIN_ACQIDX == 02 (expected 42, read: %u)",
                     length);
    }
    switch (acqIdx) {
        case 0:
            return read_index_00(packet, out.idx00);
        case 2:
            return read_index_02(packet, out.idx02);
        case 3:
            return read_index_03(packet, out.idx03);
        default:
            return read_index_other(packet, out.idxOther);
    }
}

}  // namespace

int32_t abecs_cmd_gin(AbecsComm* pinpad, uint8_t acqIdx, AbecsCmdGinOut* out) {
    if (acqIdx > kMaxIndex) {
        return raise(KOR_RESULT_INDEX_OUT_OF_BOUNDS, "Invalid acqIdx: %d (maximum is 99)", acqIdx), kRaised;
    }
    if (refuse_null(out, "'out' is NULL")) { return kRaised; }
    return call(pinpad, kGin, Request::fields([&](AbecsPacket* packet) {
                    abecs_packet_write_field_n(packet, 2, 3);
                    abecs_packet_write_field_n(packet, acqIdx, 2);
                }),
                Response::fields([&](AbecsPacket* packet) { read_layout(packet, acqIdx, *out); }));
}
