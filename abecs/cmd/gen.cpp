// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gen.h"

#include <cstring>

#include "abecs/cmd/frame.h"
#include "abecs/cmd/member_text.h"
#include "abecs/data/codec.h"
#include "abecs/data/wk_pan.h"
#include "core/attempt.h"
#include "core/raise.h"
#include "quorvel/abecs/data.h"
#include "quorvel/kor/enum.h"
#include "quorvel/kor/string.h"

using kor::raise;
using namespace abecs;

namespace {

constexpr Command kGen{.id = "GEN"};
constexpr Command kGen0403{.id = "GEN", .name = "GEN/04/03"};

struct SubCommand {
    uint64_t group;
    const char* id;
};

constexpr size_t kIdWidth = 2;
constexpr size_t kHeadWidth = 2 + 3;  // the group, the length of the sub-command

constexpr uint8_t kMaxIndex = 99;
constexpr uint8_t kMaxKeyType = 3;
constexpr uint8_t kMaxKeyUse = 1;
constexpr size_t kMaxKeyMap = 100;
constexpr size_t kMaxTags = 256;
constexpr size_t kMaxData = 256;
constexpr size_t kDataStep = 16;  // the digits of one block
constexpr size_t kKsnWidth = 20;
constexpr uint8_t kMaxSlot = 8;
constexpr size_t kMaxAtr = 36;
constexpr size_t kHeaderWidth = 8;
constexpr uint16_t kMaxApduData = 256;
constexpr size_t kStatusWordWidth = 4;
constexpr size_t kMessageWidth = 32;

template <size_t Size>
void write_digits(AbecsPacket* packet, const char (&member)[Size], size_t width) {
    abecs_packet_write_field_h_cdata(packet, member, Size, width);
}

// The length is 0 until the digits that it counts have been read, so that it never tells of more than there are.
template <typename Length, size_t Size>
void read_digits(AbecsPacket* packet, char (&member)[Size], size_t width, Length& length, size_t value) {
    length = 0;
    abecs_packet_read_field_h(packet, member, Size, width);
    length = static_cast<Length>(value);
}

// `length` is that of the sub-command's data, which follow.
void write_head(AbecsPacket* packet, const SubCommand& sub, size_t length) {
    abecs_packet_write_field_n(packet, kHeadWidth + kIdWidth + length, 3);
    abecs_packet_write_field_n(packet, sub.group, 2);
    abecs_packet_write_field_n(packet, kIdWidth + length, 3);
    abecs_packet_write_field_a(packet, sub.id, kIdWidth, false);
}

// Returns the length of the output, whose unit is the sub-command's own.
size_t read_head(AbecsPacket* packet) {
    abecs_packet_read_field_n(packet, 3);
    return abecs_packet_read_field_n(packet, 3);
}

template <typename Write, typename Read>
int32_t exchange(AbecsComm* pinpad, const SubCommand& sub, size_t length, Write&& write, Read&& read) {
    return call(pinpad, kGen, Request::fields([&](AbecsPacket* packet) {
                    write_head(packet, sub, length);
                    write(packet);
                }),
                Response::fields([&](AbecsPacket* packet) { read(packet, read_head(packet)); }));
}

// Each check is false when it has raised.
bool check_key_query(const AbecsCmdGen02K3CmdData& data) {
    constexpr KorResult_E kWrong = KOR_RESULT_ILLEGAL_ARGUMENT;
    if (data.keyType > kMaxKeyType) {
        return raise(kWrong, "Invalid value for cmdData->keyType: %d", data.keyType), false;
    }
    if (data.keyUse > kMaxKeyUse) { return raise(kWrong, "Invalid value for cmdData->keyUse: %d", data.keyUse), false; }
    if (data.idxIni > kMaxIndex) { return raise(kWrong, "Invalid value for cmdData->idxIni: %d", data.idxIni), false; }
    if (data.idxEnd > kMaxIndex) { return raise(kWrong, "Invalid value for cmdData->idxEnd: %d", data.idxEnd), false; }
    if (data.idxEnd < data.idxIni) { return raise(kWrong, "cmdData->idxIni > cmdData->idxEnd"), false; }
    return true;
}

bool check_tags(const AbecsComm* pinpad, const char* tags, const AbecsCmdGenTagsOut* out) {
    constexpr KorResult_E kWrong = KOR_RESULT_ILLEGAL_ARGUMENT;
    if (pinpad == nullptr) { return raise(kWrong, "'pinpad' is NULL"), false; }
    if (tags == nullptr) { return raise(kWrong, "'tags' is NULL"), false; }
    const size_t length = kor_string_len(tags);
    if (length > kMaxTags) { return raise(kWrong, "'tags' is too big (max: 256, requested: %zu)", length), false; }
    if (length % 2 != 0) { return raise(kWrong, "'tags' length is not even (length: %zu)", length), false; }
    if (out == nullptr) { return raise(kWrong, "'out' is NULL"), false; }
    return true;
}

void read_tags(AbecsPacket* packet, AbecsCmdGenTagsOut& out, size_t length, size_t width) {
    read_digits(packet, out.data, width, out.len, length);
}

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

bool check_pin(const AbecsCmdGen0403CmdData& data) {
    constexpr KorResult_E kWrong = KOR_RESULT_ILLEGAL_ARGUMENT;
    const int min = data.pinMinDigits;
    const int max = data.pinMaxDigits;
    if (data.slot > kMaxSlot) { return raise(kWrong, "'cmdData->slot' is invalid: %d", data.slot), false; }
    if (!codec::is_hex(data.format)) { return raise(kWrong, "'cmdData->format' is invalid: %c", data.format), false; }
    if (min > kMaxIndex) { return raise(kWrong, "'cmdData->pinMinDigits' is invalid: %d", min), false; }
    if (max > kMaxIndex) { return raise(kWrong, "'cmdData->pinMaxDigits' is invalid: %d", max), false; }
    if (min > max) {
        return raise(kWrong, "'cmdData->pinMinDigits (%d)' is greater than cmdData->pinMaxDigits (%d)", min, max),
               false;
    }
    return true;
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
    read_head(packet);
    out.status = static_cast<uint8_t>(abecs_packet_read_field_n(packet, 1));
    abecs_packet_read_field_h(packet, out.sw, sizeof out.sw, kStatusWordWidth);
}

}  // namespace

int32_t abecs_cmd_gen_02_k3(AbecsComm* pinpad, const AbecsCmdGen02K3CmdData* cmdData, char* responseData) {
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (cmdData == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'cmdData' is NULL"), kRaised; }
    if (responseData == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'responseData' is NULL"), kRaised; }
    if (!check_key_query(*cmdData)) { return kRaised; }
    const auto write = [&](AbecsPacket* packet) {
        abecs_packet_write_field_n(packet, cmdData->keyType, 1);
        abecs_packet_write_field_n(packet, cmdData->keyUse, 1);
        abecs_packet_write_field_n(packet, cmdData->idxIni, 2);
        abecs_packet_write_field_n(packet, cmdData->idxEnd, 2);
    };
    return exchange(pinpad, {2, "K3"}, 1 + 1 + 2 + 2, write, [&](AbecsPacket* packet, size_t length) {
        if (length > kMaxKeyMap) {
            return raise(KOR_RESULT_PROTOCOL_ERROR, "(%s) GEN_OUTLEN is too big: %zu)", kGen.name, length);
        }
        abecs_packet_read_field_b(packet, responseData, length, length);
        responseData[length] = '\0';
    });
}

int32_t abecs_cmd_gen_03_02(AbecsComm* pinpad, const char* tags, AbecsCmdGenTagsOut* out) {
    if (!check_tags(pinpad, tags, out)) { return kRaised; }
    const size_t width = kor_string_len(tags);
    return exchange(
        pinpad, {3, "02"}, width, [&](AbecsPacket* packet) { abecs_packet_write_field_h(packet, tags, width); },
        [&](AbecsPacket* packet, size_t digits) { read_tags(packet, *out, digits, digits); });
}

int32_t abecs_cmd_gen_03_03(AbecsComm* pinpad, const AbecsCmdGen0303CmdData* cmdData,
                            AbecsCmdGen0303RspData* responseData) {
    constexpr uint64_t kMethod = 3;
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (cmdData == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'cmdData' is NULL"), kRaised; }
    if (cmdData->idx > kMaxIndex) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid 'cmdData->idx': %d", cmdData->idx), kRaised;
    }
    const size_t size = cmdData->input.size;
    if (!is_data_size(size)) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid length for 'cmdData->input': %zu", size), kRaised;
    }
    if (responseData == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'responseData' is NULL"), kRaised; }
    const auto write = [&](AbecsPacket* packet) {
        abecs_packet_write_field_n(packet, kMethod, 1);
        abecs_packet_write_field_n(packet, cmdData->idx, 2);
        write_digits(packet, cmdData->input.data, size);
    };
    return exchange(pinpad, {3, "03"}, 1 + 2 + size, write,
                    [&](AbecsPacket* packet, size_t length) { read_data(packet, *responseData, length); });
}

AbecsCmdGen0303Data* abecs_cmd_gen_03_03_encode_data(const AbecsCmdGen0303Data* clearData, const AbecsWkPan* wkPan,
                                                     AbecsCmdGen0303Data* out) {
    if (clearData == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Missing 'clearData'"), nullptr; }
    const size_t size = clearData->size;
    if (!is_data_size(size)) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid length for 'clearData': %zu", size), nullptr;
    }
    if (wkPan == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Missing 'wkPan'"), nullptr; }
    if (out == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Missing 'out'"), nullptr; }
    if (!kor_enum_is_valid_range(wkPan->type, ABECS_WK_PAN_TYPE_DES, ABECS_WK_PAN_TYPE_TDES_RSA)) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid enumerator for %s: %d", "AbecsWkPanType_E", wkPan->type),
               nullptr;
    }
    uint8_t area[kMaxData / 2]{};
    bool done = false;
    kor::attempt([&] {
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

int32_t abecs_cmd_gen_04_01(AbecsComm* pinpad, const AbecsCmdGen0401CmdData* cmdData,
                            AbecsCmdGen0401RspData* responseData) {
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (cmdData == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'cmdData' is NULL"), kRaised; }
    if (responseData == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'responseData' is NULL"), kRaised; }
    if (!kor_enum_is_valid_range(cmdData->oper, ABECS_CMD_GEN_04_01_OPER_1, ABECS_CMD_GEN_04_01_OPER_4)) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid enumerator for %s: %d", "AbecsCmdGen0401Oper_E",
                     cmdData->oper),
               kRaised;
    }
    if (cmdData->slot > kMaxSlot) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid value for cmdData->slot: %d", cmdData->slot), kRaised;
    }
    const auto write = [&](AbecsPacket* packet) {
        abecs_packet_write_field_n(packet, static_cast<uint64_t>(cmdData->oper), 1);
        abecs_packet_write_field_n(packet, cmdData->slot, 1);
    };
    return exchange(pinpad, {4, "01"}, 1 + 1, write,
                    [&](AbecsPacket* packet, size_t) { read_slot(packet, *responseData); });
}

int32_t abecs_cmd_gen_04_02(AbecsComm* pinpad, const AbecsCmdGen0402CmdData* cmdData,
                            AbecsCmdGen0402RspData* responseData) {
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (cmdData == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'cmdData' is NULL"), kRaised; }
    if (responseData == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'responseData' is NULL"), kRaised; }
    if (cmdData->slot > kMaxSlot) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'cmdData->slot' is invalid: %d", cmdData->slot), kRaised;
    }
    if (cmdData->le > kMaxApduData) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'cmdData->le' is invalid: %d", cmdData->le), kRaised;
    }
    return exchange(
        pinpad, {4, "02"}, 1 + kHeaderWidth + 3 + size_t{2} * cmdData->lc + 3,
        [&](AbecsPacket* packet) { write_apdu(packet, *cmdData); },
        [&](AbecsPacket* packet, size_t) { read_apdu(packet, *responseData); });
}

KorResult_E abecs_cmd_gen_04_03(AbecsComm* pinpad, const AbecsCmdGen0403CmdData* cmdData) {
    constexpr KorResult_E kRefused = KOR_RESULT_ILLEGAL_ARGUMENT;
    constexpr size_t kLength = 1 + kHeaderWidth + 1 + 2 + 2 + kMessageWidth;
    static_assert(kIdWidth + kLength == 48);
    if (pinpad == nullptr) { return raise(kRefused, "'pinpad' is NULL"), kRefused; }
    if (cmdData == nullptr) { return raise(kRefused, "'cmdData' is NULL"), kRefused; }
    if (!check_pin(*cmdData)) { return kRefused; }
    // The code is taken while the error is pending: nothing is left of it once its raise has returned.
    KorResult_E code = KOR_RESULT_OK;
    kor::attempt([&] {
        send(pinpad, kGen0403, Request::fields([&](AbecsPacket* packet) {
                 write_head(packet, {4, "03"}, kLength);
                 write_pin(packet, *cmdData);
             }));
    }).cleanup([&] {
          code = KorResult_E{kor_exception_get_error()};
      }).run();
    return code;
}

int32_t abecs_cmd_gen_04_03_response(AbecsComm* pinpad, AbecsCmdGen0403RspData* rspDataOut, char* notification) {
    if (pinpad == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'pinpad' is NULL"), kRaised; }
    if (rspDataOut == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'rspDataOut' is NULL"), kRaised; }
    return poll(pinpad, kGen0403, Response::fields([&](AbecsPacket* packet) { read_verdict(packet, *rspDataOut); }),
                notification);
}

int32_t abecs_cmd_gen_04_04(AbecsComm* pinpad, const char* tags, AbecsCmdGenTagsOut* out) {
    if (!check_tags(pinpad, tags, out)) { return kRaised; }
    const size_t width = kor_string_len(tags);
    const auto write = [&](AbecsPacket* packet) {
        abecs_packet_write_field_n(packet, width / 2, 3);
        abecs_packet_write_field_h(packet, tags, width);
    };
    return exchange(pinpad, {4, "04"}, 3 + width, write,
                    [&](AbecsPacket* packet, size_t bytes) { read_tags(packet, *out, bytes, 2 * bytes); });
}
