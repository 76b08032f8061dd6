// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/data/codec.h"
#include "abecs/data/flag.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/abecs/data.h"

using namespace abecs;
using namespace kor;

namespace {

// The characters of a text field, as bytes: those of S reach beyond what a signed char holds.
struct Charset {
    unsigned lowest;
    unsigned highest;
    bool allowCr;

    constexpr bool contains(char character) const {
        const unsigned c = codec::shown(character);
        return c == '\r' ? allowCr : c >= lowest && c <= highest;
    }
};

constexpr Charset charset_a(bool allowCr) { return {0x20, 0x7E, allowCr}; }
constexpr Charset charset_s(bool allowCr) { return {0x20, 0xFF, allowCr}; }

// The first character that does not fit is refused by itself.
bool append_text(KorBuffer* buffer, const char* text, size_t length) {
    const size_t room = buffer != nullptr ? kor_buffer_available_write(buffer) : 0;
    if (length <= room) { return length == 0 || codec::append(buffer, text, length); }
    if (room != 0) { codec::append(buffer, text, room); }
    return codec::append(buffer, &text[room], 1);
}

// As far as the first fault: what was appended stays for the caller to discard.
void write_text(KorBuffer* buffer, const char* data, size_t fieldLen, Charset charset) {
    if (refuse_null(data, "'data' is NULL")) { return; }
    size_t length = 0;
    while (length < fieldLen && data[length] != '\0' && charset.contains(data[length])) { ++length; }
    if (!append_text(buffer, data, length)) { return; }
    if (data[length] != '\0') {
        if (refuse_if(length == fieldLen, "Field does not have enough room for data")) { return; }
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid character (0x%02X) at position %zu",
                     codec::shown(data[length]), length);
    }
    codec::append_repeated(buffer, " ", fieldLen - length);
}

// By the field's length and not up to a NUL, so that a NUL inside the field is found as the bad character it is.
bool check_text(const char* text, size_t length, Charset charset) {
    for (size_t i = 0; i < length; ++i) {
        if (!charset.contains(text[i])) {
            return raise(KOR_RESULT_IO_ERROR, "Invalid character (0x%02X) at position %zu", codec::shown(text[i]), i),
                   false;
        }
    }
    return true;
}

// False after a raise; the destination is then an empty text, if it has any room.
bool read_text(KorBuffer* buffer, char* to, size_t sizeTo, size_t fieldLen, Charset charset) {
    if (to != nullptr && sizeTo != 0) { *to = '\0'; }
    if (refuse_if(to != nullptr && sizeTo <= fieldLen, "sizeTo (%zu) is not enough to store field data", sizeTo)) {
        return false;
    }
    if (!codec::require(buffer, fieldLen)) { return false; }
    kor_buffer_read(buffer, to, fieldLen);
    if (to == nullptr) { return true; }
    size_t length = fieldLen;
    while (length != 0 && to[length - 1] == ' ') { --length; }
    to[length] = '\0';
    const bool good = check_text(to, length, charset);
    if (!good) { *to = '\0'; }
    return good;
}

}  // namespace

bool codec::read_a(KorBuffer* buffer, char* to, size_t sizeTo, size_t fieldLen) {
    return read_text(buffer, to, sizeTo, fieldLen, charset_a(false));
}

void abecs_data_write_field_a(KorBuffer* buffer, const char* data, size_t fieldLen, bool allowCr) {
    write_text(buffer, data, fieldLen, charset_a(is_set(allowCr)));
}

void abecs_data_write_field_a_cdata(KorBuffer* buffer, const char* data, size_t, size_t fieldLen, bool allowCr) {
    write_text(buffer, data, fieldLen, charset_a(is_set(allowCr)));
}

char* abecs_data_read_field_a(KorBuffer* buffer, char* to, size_t sizeTo, size_t fieldLen, bool allowCr) {
    read_text(buffer, to, sizeTo, fieldLen, charset_a(is_set(allowCr)));
    return to;
}

void abecs_data_write_field_s(KorBuffer* buffer, const char* data, size_t fieldLen, bool allowCr) {
    write_text(buffer, data, fieldLen, charset_s(is_set(allowCr)));
}

void abecs_data_write_field_s_cdata(KorBuffer* buffer, const char* data, size_t, size_t fieldLen, bool allowCr) {
    write_text(buffer, data, fieldLen, charset_s(is_set(allowCr)));
}

char* abecs_data_read_field_s(KorBuffer* buffer, char* to, size_t sizeTo, size_t fieldLen, bool allowCr) {
    read_text(buffer, to, sizeTo, fieldLen, charset_s(is_set(allowCr)));
    return to;
}
