// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <iterator>

#include "abecs/data/codec.h"
#include "abecs/data/limits.h"
#include "abecs/data/rsp_stat.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/data.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr size_t kMaxDigits = 13;
constexpr uint64_t kLimit = 10'000'000'000'000;

}  // namespace

std::optional<uint64_t> codec::read_n(KorBuffer* buffer, size_t fieldLen) {
    if (!require(buffer, fieldLen)) { return std::nullopt; }
    if (fieldLen > kMaxDigits) {
        raise(KOR_RESULT_ILLEGAL_ARGUMENT, "field length (%zu) is too big (maximum: %zu)", fieldLen, kMaxDigits);
        return std::nullopt;
    }
    char digits[kMaxDigits];
    kor_buffer_read(buffer, digits, fieldLen);
    uint64_t value = 0;
    for (size_t i = 0; i < fieldLen; ++i) {
        if (!is_digit(digits[i])) {
            raise(KOR_RESULT_IO_ERROR, "Invalid char (0x%02X) at index %zu", shown(digits[i]), i);
            return std::nullopt;
        }
        value = value * 10 + hex_digit(digits[i]);
    }
    return value;
}

std::optional<int32_t> codec::read_rsp_stat(KorBuffer* buffer) {
    const auto value = read_n(buffer, kStatWidth);
    if (!value) { return std::nullopt; }
    const auto stat = static_cast<int32_t>(*value);
    if (!is_rsp_stat(stat)) {
        raise(KOR_RESULT_PROTOCOL_ERROR, "Unknown value for RSP_STAT: %03d", stat);
        return std::nullopt;
    }
    return stat;
}

void abecs_data_write_field_n(KorBuffer* buffer, uint64_t i, size_t fieldLen) {
    const auto value = static_cast<unsigned long long>(i);
    if (refuse_if(i >= kLimit, "'i' (%llu) is too long (maximum: 9999999999999", value)) { return; }
    char digits[kMaxDigits];
    char* first = std::end(digits);
    do {
        *--first = static_cast<char>('0' + i % 10);
        i /= 10;
    } while (i != 0);
    const auto length = static_cast<size_t>(std::end(digits) - first);
    if (refuse_if(length > fieldLen, "Number length (%zu) is greater than field length (%zu)", length, fieldLen)) {
        return;
    }
    if (codec::append_repeated(buffer, "0", fieldLen - length)) { codec::append(buffer, first, length); }
}

uint64_t abecs_data_read_field_n(KorBuffer* buffer, size_t fieldLen) {
    return codec::read_n(buffer, fieldLen).value_or(0);
}

// A status that could not be read must not look like success to a caller that the raise returned to.
int32_t abecs_data_read_rsp_stat(KorBuffer* buffer) {
    return codec::read_rsp_stat(buffer).value_or(ABECS_RSP_STAT_ST_INTERR);
}
