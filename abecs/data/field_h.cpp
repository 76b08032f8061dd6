// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/data/field_h.h"

#include <cstdint>
#include <cstring>

#include "abecs/data/codec.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/data.h"

using namespace abecs;
using namespace kor;

namespace {

// The digits of 0x30, not of 0x00: the required wire form.
constexpr std::string_view kPadding = "30";

enum class Leading { kDropPadding, kKeepAll };

// The length of the text, known to be good as a whole: the padding goes ahead of it on the wire.
std::optional<size_t> check_pairs(const char* text, size_t maxLength, size_t fieldLen) {
    size_t i = 0;
    for (; i < maxLength && text[i] != '\0'; i += 2) {
        if (i == fieldLen) {
            raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Field does not have enough room for data");
            return std::nullopt;
        }
        if (i + 1 == maxLength || !codec::is_hex(text[i]) || !codec::is_hex(text[i + 1])) {
            raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid hex byte at index %zu", i);
            return std::nullopt;
        }
    }
    return i;
}

// Hands each pair to `take`. A fault is raised only after the rest of the field has been consumed too, and after what
// was taken so far has been thrown away by `drop`: a raise may not come back.
template <typename Take, typename Drop>
bool read_pairs(KorBuffer* buffer, size_t fieldLen, Leading leading, Take take, Drop drop) {
    bool dropping = leading == Leading::kDropPadding;
    for (size_t left = fieldLen; left != 0; left -= 2) {
        char pair[3]{};
        kor_buffer_read(buffer, pair, 2);
        dropping = dropping && pair == kPadding;
        if (dropping) { continue; }
        if (!codec::is_hex(pair[0]) || !codec::is_hex(pair[1])) {
            kor_buffer_read(buffer, nullptr, left - 2);
            drop();
            return raise(KOR_RESULT_IO_ERROR, "Invalid data: %s", pair), false;
        }
        take(pair);
    }
    return true;
}

size_t read_bytes(KorBuffer* buffer, uint8_t* to, size_t sizeTo, size_t fieldLen, Leading leading) {
    if (!codec::require(buffer, fieldLen)) { return 0; }
    if (refuse_if(fieldLen % 2 != 0, "fieldLen (%zu) must be even", fieldLen)
        || refuse_if(to != nullptr && sizeTo < fieldLen / 2, "sizeTo (%zu) < (fieldLen / 2) (%zu)", sizeTo,
                     fieldLen / 2)) {
        return 0;
    }
    size_t count = 0;
    const auto take = [&](const char* pair) {
        if (to != nullptr) { to[count] = codec::hex_byte(pair[0], pair[1]); }
        ++count;
    };
    read_pairs(buffer, fieldLen, leading, take, [&] { count = 0; });
    return count;
}

}  // namespace

size_t abecs::read_field_h_bytes(KorBuffer* buffer, uint8_t* to, size_t sizeTo, size_t fieldLen) {
    return read_bytes(buffer, to, sizeTo, fieldLen, Leading::kKeepAll);
}

void abecs_data_write_field_h(KorBuffer* buffer, const char* data, size_t fieldLen) {
    abecs_data_write_field_h_cdata(buffer, data, SIZE_MAX, fieldLen);
}

void abecs_data_write_field_h_cdata(KorBuffer* buffer, const char* data, size_t dataLen, size_t fieldLen) {
    if (refuse_if(fieldLen % 2 != 0, "fieldLen (%zu) is not even", fieldLen)
        || refuse_missing(data, dataLen, "'data' is NULL")) {
        return;
    }
    const auto length = check_pairs(data, dataLen, fieldLen);
    if (!length || !codec::append_repeated(buffer, kPadding, (fieldLen - *length) / 2)) { return; }
    for (size_t i = 0; i < *length; i += 2) {
        const char pair[]{codec::to_upper(data[i]), codec::to_upper(data[i + 1])};
        if (!codec::append(buffer, pair, sizeof pair)) { return; }
    }
}

char* abecs_data_read_field_h(KorBuffer* buffer, char* to, size_t sizeTo, size_t fieldLen) {
    if (to != nullptr && sizeTo != 0) { *to = '\0'; }
    if (!codec::require(buffer, fieldLen)) { return to; }
    if (refuse_if(fieldLen % 2 != 0, "fieldLen (%zu) is not an even number", fieldLen)
        || refuse_if(to != nullptr && sizeTo <= fieldLen, "sizeTo (%zu) is not enough to store field (length: %zu)",
                     sizeTo, fieldLen)) {
        return to;
    }
    char* end = to;
    const auto take = [&](const char* pair) {
        if (to != nullptr) { end = static_cast<char*>(std::memcpy(end, pair, 2)) + 2; }
    };
    const auto drop = [&] {
        if (to != nullptr) { *to = '\0'; }
    };
    if (read_pairs(buffer, fieldLen, Leading::kDropPadding, take, drop) && to != nullptr) { *end = '\0'; }
    return to;
}

void abecs_data_write_field_h_raw(KorBuffer* buffer, const uint8_t* data, size_t dataLen, size_t fieldLen) {
    if (refuse_if(fieldLen % 2 != 0, "fieldLen (%zu) must be even", fieldLen)
        || refuse_if(fieldLen / 2 < dataLen, "fieldLen < (dataLen * 2) ==> (%zu < (%zu * 2))", fieldLen, dataLen)
        || refuse_missing(data, dataLen, "'data' is NULL")) {
        return;
    }
    if (!codec::append_repeated(buffer, kPadding, fieldLen / 2 - dataLen)) { return; }
    constexpr char kDigits[] = "0123456789ABCDEF";
    for (size_t i = 0; i < dataLen; ++i) {
        const char pair[]{kDigits[data[i] >> 4], kDigits[data[i] & 0x0F]};
        if (!codec::append(buffer, pair, sizeof pair)) { return; }
    }
}

size_t abecs_data_read_field_h_raw(KorBuffer* buffer, uint8_t* to, size_t sizeTo, size_t fieldLen) {
    return read_bytes(buffer, to, sizeTo, fieldLen, Leading::kDropPadding);
}
