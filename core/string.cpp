// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/string.h"

#include <cstdio>
#include <cstring>

#include "core/check.h"
#include "core/variadic.h"
#include "quorvel/kor/heap.h"
#include "quorvel/kor/system.h"

using namespace kor;

namespace {

constexpr const char* kBlanks = "\t\n\v\f\r ";
constexpr char kRandomCharacters[] = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

// Of ASCII only: the C library's follow the locale that the application has set, and with it bytes on the line would
// change.
constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

constexpr char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

char fold(char c, bool ignoreCase) { return ignoreCase ? lower(c) : c; }

// Ignoring case.
bool begins_with(const char* text, const char* prefix) {
    for (; *prefix != '\0'; ++text, ++prefix) {
        if (lower(*text) != lower(*prefix)) { return false; }
    }
    return true;
}

void convert(char* out, const char* in, char (*to)(char)) {
    do { *out++ = to(*in); } while (*in++ != '\0');
}

// False when there is nowhere to copy to.
bool copy_unless_same(char* to, const char* from) {
    return (to != nullptr && to == from) || kor_string_copy(to, from) != nullptr;
}

}  // namespace

KOR_VARIADIC char* kor_string_format(char* to, size_t size, const char* format, ...) {
    if (refuse_null(to, "'to' is NULL")) { return nullptr; }
    // Tested here as well as in kor_string_vformat, because a raise from there would jump over va_end.
    if (refuse_if(to == format, "'to' and 'format' points to the same buffer")) { return to; }
    va_list arguments;
    va_start(arguments, format);
    kor_string_vformat(to, size, format, arguments);
    va_end(arguments);
    return to;
}

int32_t kor_string_vformat(char* to, size_t size, const char* format, va_list arguments) {
    if (refuse_if(to == format, "'to' and 'format' points to the same buffer") || refuse_null(to, "'to' is NULL")) {
        return 0;
    }
    int length = 0;
    if (format != nullptr) {
        length = std::vsnprintf(to, size, format, arguments);
    } else if (size != 0) {
        to[0] = '\0';
    }
    if (size != 0) { to[size - 1] = '\0'; }
    return length;
}

char* kor_string_copy(char* to, const char* from) {
    if (refuse_null(to, "'to' is NULL")) { return nullptr; }
    return std::strcpy(to, from);  // NOLINT(clang-analyzer-security.insecureAPI.strcpy): unbounded by contract
}

char* kor_string_new(const char* text) {
    if (text == nullptr) { return nullptr; }
    const size_t size = std::strlen(text) + 1;
    void* copy = kor_heap_alloc(size, 0);
    if (copy == nullptr) { return nullptr; }
    return static_cast<char*>(std::memcpy(copy, text, size));
}

size_t kor_string_len(const char* text) { return std::strlen(text); }

bool kor_string_is_empty(const char* text) { return *text == '\0'; }

int32_t kor_string_ccmp(const char* lhs, const char* rhs, bool ignoreCase) {
    if (lhs == rhs) { return 0; }
    if (!ignoreCase) { return std::strcmp(lhs, rhs); }
    while (*lhs != '\0' && lower(*lhs) == lower(*rhs)) {
        ++lhs;
        ++rhs;
    }
    return static_cast<unsigned char>(lower(*lhs)) - static_cast<unsigned char>(lower(*rhs));
}

int32_t kor_string_cmp(const char* lhs, const char* rhs) { return kor_string_ccmp(lhs, rhs, false); }

int32_t kor_string_icmp(const char* lhs, const char* rhs) { return kor_string_ccmp(lhs, rhs, true); }

bool kor_string_cequals(const char* lhs, const char* rhs, bool ignoreCase) {
    return kor_string_ccmp(lhs, rhs, ignoreCase) == 0;
}

bool kor_string_equals(const char* lhs, const char* rhs) { return kor_string_cequals(lhs, rhs, false); }

bool kor_string_iequals(const char* lhs, const char* rhs) { return kor_string_cequals(lhs, rhs, true); }

void kor_string_to_lower(char* out, const char* in) {
    if (refuse_null(out, "'out' is NULL")) { return; }
    convert(out, in, lower);
}

void kor_string_to_upper(char* out, const char* in) {
    if (refuse_null(out, "'out' is NULL")) { return; }
    convert(out, in, upper);
}

const char* kor_string_cfind_first(const char* needle, const char* text, bool ignoreCase) {
    if (needle == text) { return text; }
    if (!ignoreCase) { return std::strstr(text, needle); }
    if (*needle == '\0') { return text; }
    for (; *text != '\0'; ++text) {
        if (begins_with(text, needle)) { return text; }
    }
    return nullptr;
}

const char* kor_string_find_first(const char* needle, const char* text) {
    return kor_string_cfind_first(needle, text, false);
}

const char* kor_string_ifind_first(const char* needle, const char* text) {
    return kor_string_cfind_first(needle, text, true);
}

const char* kor_string_cfind_last(const char* needle, const char* text, bool ignoreCase) {
    if (needle == text) { return text; }
    if (needle == nullptr || text == nullptr) { return nullptr; }
    for (const char* at = text + std::strlen(text); at != text;) {
        --at;
        if (fold(*at, ignoreCase) != fold(*needle, ignoreCase)) { continue; }
        const char* found = kor_string_cfind_first(needle, at, ignoreCase);
        if (found != nullptr) { return found; }
    }
    return nullptr;
}

const char* kor_string_find_last(const char* needle, const char* text) {
    return kor_string_cfind_last(needle, text, false);
}

const char* kor_string_ifind_last(const char* needle, const char* text) {
    return kor_string_cfind_last(needle, text, true);
}

bool kor_string_cstarts_with(const char* prefix, const char* text, bool ignoreCase) {
    return kor_string_cfind_first(prefix, text, ignoreCase) == text;
}

bool kor_string_starts_with(const char* prefix, const char* text) {
    return kor_string_cstarts_with(prefix, text, false);
}

bool kor_string_istarts_with(const char* prefix, const char* text) {
    return kor_string_cstarts_with(prefix, text, true);
}

bool kor_string_cends_with(const char* suffix, const char* text, bool ignoreCase) {
    const char* found = kor_string_cfind_last(suffix, text, ignoreCase);
    return found != nullptr && std::strlen(found) == std::strlen(suffix);
}

bool kor_string_ends_with(const char* suffix, const char* text) { return kor_string_cends_with(suffix, text, false); }

bool kor_string_iends_with(const char* suffix, const char* text) { return kor_string_cends_with(suffix, text, true); }

size_t kor_string_creplace_chars(char* text, char from, char to, bool ignoreCase) {
    if (text == nullptr) { return 0; }
    size_t count = 0;
    for (char* end = text + std::strlen(text); text != end; ++text) {
        if (fold(*text, ignoreCase) != fold(from, ignoreCase)) { continue; }
        *text = to;
        ++count;
    }
    return count;
}

size_t kor_string_replace_chars(char* text, char from, char to) {
    return kor_string_creplace_chars(text, from, to, false);
}

size_t kor_string_ireplace_chars(char* text, char from, char to) {
    return kor_string_creplace_chars(text, from, to, true);
}

char* kor_string_ltrim(char* to, const char* from, const char* set) {
    if (!copy_unless_same(to, from)) { return nullptr; }
    const char* rest = to + std::strspn(to, set != nullptr ? set : kBlanks);
    std::memmove(to, rest, std::strlen(rest) + 1);
    return to;
}

char* kor_string_rtrim(char* to, const char* from, const char* set) {
    if (!copy_unless_same(to, from)) { return nullptr; }
    const char* blanks = set != nullptr ? set : kBlanks;
    for (char* end = to + std::strlen(to); end != to && std::strchr(blanks, end[-1]) != nullptr; --end) {
        end[-1] = '\0';
    }
    return to;
}

char* kor_string_trim(char* to, const char* from, const char* set) {
    if (kor_string_rtrim(to, from, set) == nullptr) { return nullptr; }
    return kor_string_ltrim(to, to, set);
}

char* kor_string_random(char* dest, size_t length) {
    if (refuse_null(dest, "'dest' is NULL")) { return nullptr; }
    constexpr int32_t kLast = sizeof kRandomCharacters - 2;
    for (size_t i = 0; i < length; ++i) { dest[i] = kRandomCharacters[kor_system_random(0, kLast)]; }
    dest[length] = '\0';
    return dest;
}
