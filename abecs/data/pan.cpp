// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/pan.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "abecs/data/codec.h"
#include "abecs/data/pan_hex.h"
#include "abecs/data/wk_pan.h"
#include "core/attempt.h"
#include "core/check.h"

using namespace abecs;
using namespace abecs::codec;
using namespace kor;

namespace {

constexpr size_t kMinPan = 13, kMaxPan = 64, kMaxTrack = 128, kMaxIdentifiedTrack = 255;
constexpr size_t kBlockBytes = 8, kBlock = 2 * kBlockBytes;
constexpr char kPadding = 'F', kEncipheredBlank = 'E';

char panResult[kMaxPan + 1];
char trackResult[kMaxTrack + 1];
char identifiedResult[kMaxIdentifiedTrack + 1];

// Everything that a transformation works on, in one place so that it is wiped as a whole.
template <size_t MaxLength>
struct WorkArea {
    char text[MaxLength + 1];
    size_t length;
    char digits[kBlock];
    uint8_t block[kBlockBytes];
};

// The 16 digits at `from` deciphered into area.digits.
template <typename Area>
bool decipher_digits(Area& area, const char* from, const AbecsWkPan& key) {
    return pan::from_hex({from, kBlock}, area.block) && decipher(key, area.block, kBlockBytes)
           && pan::to_hex(area.block, area.digits);
}

bool transform_pan(WorkArea<kMaxPan>& area, const AbecsWkPan& key) {
    char* end = area.text + area.length;
    if (area.length < kMinPan || !std::all_of(area.text, end, is_digit)) { return true; }
    char* start = area.length < kBlock ? area.text : end - kBlock;
    std::fill(end, std::max(end, start + kBlock), kPadding);
    if (!decipher_digits(area, start, key)) { return false; }
    std::memcpy(start, area.digits, kBlock);
    return true;
}

// Turns deciphered digits into the number's characters; returns how many there are, or 0 when this is no number.
size_t read_number(char* digits) {
    constexpr size_t kFirstPadding = 13;
    size_t length = kBlock;
    for (size_t i = 0; i < kBlock; ++i) {
        if (!is_digit(digits[i]) && digits[i] != kEncipheredBlank && digits[i] != kPadding) { return 0; }
        if (digits[i] == kEncipheredBlank) { digits[i] = ' '; }
        if (digits[i] == kPadding && i >= kFirstPadding) { length = std::min(length, i); }
    }
    return length;
}

bool transform_track(WorkArea<kMaxTrack>& area, const AbecsWkPan& key) {
    char* separator = area.text + std::strcspn(area.text, "^=");
    if (separator - area.text < static_cast<ptrdiff_t>(kBlock) || !std::all_of(area.text, separator, is_hex)) {
        return true;
    }
    char* start = separator - kBlock;
    if (!decipher_digits(area, start, key)) { return false; }
    const size_t length = read_number(area.digits);
    if (length == 0) { return true; }
    std::memcpy(start, area.digits, length);
    std::memmove(start + length, separator, std::strlen(separator) + 1);
    return true;
}

// Works on a copy, because the text may be an earlier result; replaces the earlier result in full, so that nothing of
// a longer one is left behind it.
template <size_t MaxLength, typename Transform>
const char* transformed(char (&result)[MaxLength + 1], const char* text, size_t len, Transform transform) {
    WorkArea<MaxLength> area{};
    bool done = false;
    attempt([&] {
        area.length = strnlen(text, len);
        std::memcpy(area.text, text, area.length);
        done = transform(area);
        if (done) { std::memcpy(result, area.text, sizeof result); }
    }).cleanup([&] {
          explicit_bzero(&area, sizeof area);
      }).run();
    return done ? result : "";
}

size_t length_of(const char* text) { return text != nullptr ? std::strlen(text) : 0; }

}  // namespace

const char* abecs_pan_encrypt2(const char* pan, size_t len, const AbecsWkPan* key) {
    if (refuse_null(pan, "'pan' is NULL") || refuse_null(key, "'key' is NULL")
        || refuse_if(len > kMaxPan, "PAN length is too big (max: %zu, requested: %zu)", kMaxPan, len)) {
        return "";
    }
    return transformed<kMaxPan>(panResult, pan, len, [&](auto& area) { return transform_pan(area, *key); });
}

const char* abecs_pan_decrypt_track2(const char* track, size_t len, const AbecsWkPan* key) {
    if (refuse_null(track, "'track' is NULL") || refuse_null(key, "'key' is NULL")
        || refuse_if(len > kMaxTrack, "Track length is too big (max: %zu, requested: %zu)", kMaxTrack, len)) {
        return "";
    }
    return transformed<kMaxTrack>(trackResult, track, len, [&](auto& area) { return transform_track(area, *key); });
}

const char* abecs_pan_identify2(const char* track, size_t len) {
    if (refuse_null(track, "'track' is NULL")
        || refuse_if(len > kMaxIdentifiedTrack, "track length is too big (max: %zu, requested: %zu)",
                     kMaxIdentifiedTrack, len)) {
        return "";
    }
    const char* end = track + strnlen(track, len);
    const char* first = std::find_if(track, end, [](char c) { return is_digit(c) || c == ' '; });
    const char* start = first != end ? first : track;
    const char* stop = std::find_if(start, end, [](char c) { return c == '^' || c == '='; });
    char number[sizeof identifiedResult]{};
    std::copy_if(start, stop, number, [](char c) { return c != ' '; });
    std::memcpy(identifiedResult, number, sizeof number);
    explicit_bzero(number, sizeof number);
    return identifiedResult;
}

// The same, of a text that ends with a NUL.
const char* abecs_pan_encrypt(const char* pan, const AbecsWkPan* key) {
    return abecs_pan_encrypt2(pan, length_of(pan), key);
}

const char* abecs_pan_decrypt_track(const char* track, const AbecsWkPan* key) {
    return abecs_pan_decrypt_track2(track, length_of(track), key);
}

const char* abecs_pan_identify(const char* track) { return abecs_pan_identify2(track, length_of(track)); }
