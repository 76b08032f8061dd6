// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/data.h"

#include <array>
#include <cstring>

#include "abecs/data/codec.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/kor/endianness.h"

using namespace abecs;
using namespace kor;

namespace {

// Counts into `outIndex`, when there is one, only on a failure. No text at all fails at its first character.
bool all_of(const char* text, size_t length, size_t* outIndex, bool (*belongs)(char)) {
    for (size_t i = 0; i < length; ++i) {
        if (text != nullptr && belongs(text[i])) { continue; }
        if (outIndex != nullptr) { *outIndex = i; }
        return false;
    }
    return true;
}

unsigned days_in(const AbecsDate& date) {
    constexpr std::array<uint8_t, 12> kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    constexpr uint8_t kFebruary = 2;
    // Of two-digit years every fourth is a leap year, 00 included.
    const bool leapDay = date.month == kFebruary && date.year % 4 == 0;
    return kDays[date.month - 1U] + (leapDay ? 1U : 0U);
}

bool is_x_length(size_t fieldLen) { return fieldLen == 1 || fieldLen == 2 || fieldLen == 4; }

void raise_x_length(size_t fieldLen) {
    raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Unsupported fieldLen: %zu (accepted values are 1, 2, or 4)", fieldLen);
}

}  // namespace

bool codec::append(KorBuffer* buffer, const void* bytes, size_t length) {
    const bool fits = buffer != nullptr && length <= kor_buffer_available_write(buffer);
    kor_buffer_write(buffer, bytes, length);
    return fits;
}

bool codec::append_repeated(KorBuffer* buffer, std::string_view unit, size_t count) {
    while (count != 0 && append(buffer, unit.data(), unit.size())) { --count; }
    return count == 0;
}

bool codec::require(const KorBuffer* buffer, size_t length) {
    const size_t available = kor_buffer_available_read(buffer);
    if (buffer == nullptr) { return false; }
    if (available < length) {
        return raise(KOR_RESULT_IO_ERROR, "Buffer does not have enough data (requested: %zu, available: %zu)", length,
                     available),
               false;
    }
    return true;
}

bool codec::append_x(KorBuffer* buffer, uint32_t data, size_t fieldLen) {
    if (!is_x_length(fieldLen)) { return raise_x_length(fieldLen), false; }
    if (refuse_if(fieldLen == 1 && data > UINT8_MAX, "fieldLen (1) is not enough for data (%u)", data)
        || refuse_if(fieldLen == 2 && data > UINT16_MAX, "fieldLen (2) is not enough for data (%u)", data)) {
        return false;
    }
    const uint32_t bigEndian = kor_endianness_htobe32(data << (8 * (sizeof data - fieldLen)));
    return append(buffer, &bigEndian, fieldLen);
}

std::optional<uint32_t> codec::read_x(KorBuffer* buffer, size_t fieldLen) {
    if (!is_x_length(fieldLen)) { return raise_x_length(fieldLen), std::nullopt; }
    if (!require(buffer, fieldLen)) { return std::nullopt; }
    switch (fieldLen) {
        case 1:
            return kor_buffer_read_byte(buffer);
        case 2:
            return kor_buffer_read_ui16(buffer, KOR_ENDIANNESS_BIG);
        default:
            return kor_buffer_read_ui32(buffer, KOR_ENDIANNESS_BIG);
    }
}

void abecs_data_write_field_x(KorBuffer* buffer, uint32_t data, size_t fieldLen) {
    codec::append_x(buffer, data, fieldLen);
}

uint32_t abecs_data_read_field_x(KorBuffer* buffer, size_t fieldLen) {
    return codec::read_x(buffer, fieldLen).value_or(0);
}

void abecs_data_write_field_b(KorBuffer* buffer, const void* data, size_t dataLen) {
    if (refuse_missing(data, dataLen, "'data' is NULL")) { return; }
    kor_buffer_write(buffer, data, dataLen);
}

size_t abecs_data_read_field_b(KorBuffer* buffer, void* to, size_t sizeTo, size_t dataLen) {
    if (refuse_if(to != nullptr && sizeTo < dataLen,
                  "Destination array does not have enough size to store all data (requested: %zu, available: %zu)",
                  dataLen, sizeTo)) {
        return 0;
    }
    return codec::require(buffer, dataLen) ? kor_buffer_read(buffer, to, dataLen) : 0;
}

void abecs_data_check_n_string(const char* text, const char* argName, size_t maxLen, size_t minLen) {
    if (text == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'%s' is NULL", argName); }
    const size_t length = std::strlen(text);
    if (refuse_if(length > maxLen, "'%s' is too long (maximum: %zu, requested: %zu)", argName, maxLen, length)
        || refuse_if(length < minLen, "'%s' is too short (minimum: %zu, requested: %zu)", argName, minLen, length)) {
        return;
    }
    size_t bad = 0;
    if (!abecs_data_is_numeric_field(text, length, &bad)) {
        raise(KOR_RESULT_ILLEGAL_ARGUMENT, "%s: invalid char (0x%02X) at index %zu", argName, codec::shown(text[bad]),
              bad);
    }
}

bool abecs_data_is_numeric_field(const char* text, size_t length, size_t* outIndex) {
    return all_of(text, length, outIndex, codec::is_digit);
}

bool abecs_data_is_alphanumeric(char c) { return codec::is_digit(c) || codec::is_upper(c) || codec::is_lower(c); }

bool abecs_data_is_alphanumeric_field(const char* text, size_t length, size_t* outIndex) {
    return all_of(text, length, outIndex, abecs_data_is_alphanumeric);
}

void abecs_data_validate_date(const AbecsDate* date) {
    if (refuse_null(date, "'date' is NULL") || refuse_if(date->year > 99, "Invalid year: %d", date->year)
        || refuse_if(date->month == 0 || date->month > 12, "Invalid month: %d", date->month)) {
        return;
    }
    if (date->day == 0 || date->day > days_in(*date)) {
        raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid date (YY-MM-DD): %02d-%02d-%02d", date->year, date->month,
              date->day);
    }
}

void abecs_data_validate_time(const AbecsTime* time) {
    if (refuse_null(time, "'time' is NULL") || refuse_if(time->hours > 23, "Invalid hours: %d", time->hours)
        || refuse_if(time->minutes > 59, "Invalid minutes: %d", time->minutes)) {
        return;
    }
    if (time->seconds > 59) { raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid seconds: %d", time->seconds); }
}

char* abecs_data_to_hex(const uint8_t* data, size_t szData, char* to, size_t sizeTo) {
    if (refuse_missing(data, szData, "'data' is NULL")
        || refuse_if(data != nullptr && szData == 0, "'szData' is zero")) {
        return to;
    }
    if (refuse_null(to, "'to' is NULL")) { return nullptr; }
    if (refuse_if(sizeTo == 0 || (sizeTo - 1) / 2 < szData,
                  "Destination buffer does not have enough room for encoded data")) {
        return to;
    }
    constexpr char kDigits[] = "0123456789abcdef";
    for (size_t i = 0; i < szData; ++i) {
        to[2 * i] = kDigits[data[i] >> 4];
        to[2 * i + 1] = kDigits[data[i] & 0x0F];
    }
    to[2 * szData] = '\0';
    return to;
}

uint8_t* abecs_data_from_hex(const char* hex, uint8_t* out, size_t sizeOut) {
    return abecs_data_from_hex2(hex, hex != nullptr ? std::strlen(hex) : 0, out, sizeOut);
}

uint8_t* abecs_data_from_hex2(const char* hex, size_t szHex, uint8_t* out, size_t sizeOut) {
    if (refuse_missing(hex, szHex, "'hex' is NULL")
        || refuse_if(hex != nullptr && *hex != '\0' && szHex == 0, "'szHex' is zero")) {
        return out;
    }
    if (refuse_null(out, "'out' is NULL")) { return nullptr; }
    if (refuse_if(sizeOut < szHex / 2, "Destination buffer does not have enough room for decoded data")
        || refuse_if(szHex % 2 != 0 || !all_of(hex, szHex, nullptr, codec::is_hex), "Invalid hex string")) {
        return out;
    }
    for (size_t i = 0; i < szHex / 2; ++i) { out[i] = codec::hex_byte(hex[2 * i], hex[2 * i + 1]); }
    return out;
}
