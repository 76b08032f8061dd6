// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/data/param.h"

#include <algorithm>

#include "abecs/data/codec.h"
#include "abecs/data/flag.h"
#include "quorvel/abecs/data.h"

using namespace abecs;

// From storage to storage, in the two runs that a ring can make of it: a copy on the way would leave card data behind.
bool abecs::move_bytes(KorBuffer* from, KorBuffer* to, size_t length) {
    const uint8_t* storage = kor_buffer_get_storage(from);
    const size_t begin = kor_buffer_get_read_cursor_pos(from);
    const size_t untilEnd = std::min(length, kor_buffer_capacity(from) - begin);
    // What does not fit is refused as a whole, before a byte of it has moved.
    if (length > kor_buffer_available_write(to)) { return codec::append(to, storage, length); }
    if (!codec::append(to, storage + begin, untilEnd) || !codec::append(to, storage, length - untilEnd)) {
        return false;
    }
    kor_buffer_read(from, nullptr, length);
    return true;
}

bool abecs::append_param(KorBuffer* buffer, AbecsParam* param) {
    const auto length = static_cast<uint32_t>(kor_buffer_available_read(param->data));
    return codec::append_x(buffer, param->id, 2) && codec::append_x(buffer, length, 2)
           && move_bytes(param->data, buffer, length);
}

AbecsParam* abecs_param_new() { return new_owner<AbecsParam>(); }

void abecs_param_delete(AbecsParam** param) { delete_owner(param); }

void abecs_param_clear_data(AbecsParam* param) { apply<kor_buffer_clear>(bytes_of(param)); }

void abecs_param_reset(AbecsParam* param) {
    if (bytes_of(param) == nullptr) { return; }
    param->id = 0;
    kor_buffer_clear(param->data);
}

uint16_t abecs_param_get_id(const AbecsParam* param) { return bytes_of(param) != nullptr ? param->id : uint16_t{0}; }

void abecs_param_set_id(AbecsParam* param, uint16_t id) {
    if (bytes_of(param) != nullptr) { param->id = id; }
}

size_t abecs_param_available_read(const AbecsParam* param) { return apply<kor_buffer_available_read>(bytes_of(param)); }

void abecs_param_write_byte(AbecsParam* param, uint8_t byte) {
    return apply<kor_buffer_write_byte>(bytes_of(param), byte);
}

uint8_t abecs_param_read_byte(AbecsParam* param) { return apply<kor_buffer_read_byte>(bytes_of(param)); }

void abecs_param_write_field_n(AbecsParam* param, uint64_t i, size_t fieldLen) {
    return apply<abecs_data_write_field_n>(bytes_of(param), i, fieldLen);
}

uint64_t abecs_param_read_field_n(AbecsParam* param, size_t fieldLen) {
    return apply<abecs_data_read_field_n>(bytes_of(param), fieldLen);
}

void abecs_param_write_field_a(AbecsParam* param, const char* data, size_t fieldLen, bool allowCr) {
    return apply<abecs_data_write_field_a>(bytes_of(param), data, fieldLen, is_set(allowCr));
}

void abecs_param_write_field_a_cdata(AbecsParam* param, const char* data, size_t dataLen, size_t fieldLen,
                                     bool allowCr) {
    return apply<abecs_data_write_field_a_cdata>(bytes_of(param), data, dataLen, fieldLen, is_set(allowCr));
}

char* abecs_param_read_field_a(AbecsParam* param, char* to, size_t sizeTo, size_t fieldLen, bool allowCr) {
    return apply<abecs_data_read_field_a>(bytes_of(param), to, sizeTo, fieldLen, is_set(allowCr));
}

void abecs_param_write_field_s(AbecsParam* param, const char* data, size_t fieldLen, bool allowCr) {
    return apply<abecs_data_write_field_s>(bytes_of(param), data, fieldLen, is_set(allowCr));
}

void abecs_param_write_field_s_cdata(AbecsParam* param, const char* data, size_t dataLen, size_t fieldLen,
                                     bool allowCr) {
    return apply<abecs_data_write_field_s_cdata>(bytes_of(param), data, dataLen, fieldLen, is_set(allowCr));
}

char* abecs_param_read_field_s(AbecsParam* param, char* to, size_t sizeTo, size_t fieldLen, bool allowCr) {
    return apply<abecs_data_read_field_s>(bytes_of(param), to, sizeTo, fieldLen, is_set(allowCr));
}

void abecs_param_write_field_h(AbecsParam* param, const char* data, size_t fieldLen) {
    return apply<abecs_data_write_field_h>(bytes_of(param), data, fieldLen);
}

char* abecs_param_read_field_h(AbecsParam* param, char* to, size_t sizeTo, size_t fieldLen) {
    return apply<abecs_data_read_field_h>(bytes_of(param), to, sizeTo, fieldLen);
}

void abecs_param_write_field_h_raw(AbecsParam* param, const uint8_t* data, size_t dataLen, size_t fieldLen) {
    return apply<abecs_data_write_field_h_raw>(bytes_of(param), data, dataLen, fieldLen);
}

size_t abecs_param_read_field_h_raw(AbecsParam* param, uint8_t* to, size_t sizeTo, size_t fieldLen) {
    return apply<abecs_data_read_field_h_raw>(bytes_of(param), to, sizeTo, fieldLen);
}

void abecs_param_write_field_x(AbecsParam* param, uint32_t data, size_t fieldLen) {
    return apply<abecs_data_write_field_x>(bytes_of(param), data, fieldLen);
}

uint32_t abecs_param_read_field_x(AbecsParam* param, size_t fieldLen) {
    return apply<abecs_data_read_field_x>(bytes_of(param), fieldLen);
}

void abecs_param_write_field_b(AbecsParam* param, const void* data, size_t dataLen) {
    return apply<abecs_data_write_field_b>(bytes_of(param), data, dataLen);
}

size_t abecs_param_read_field_b(AbecsParam* param, void* to, size_t sizeTo, size_t dataLen) {
    return apply<abecs_data_read_field_b>(bytes_of(param), to, sizeTo, dataLen);
}
