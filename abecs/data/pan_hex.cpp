// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/data/pan_hex.h"

#include "abecs/data/codec.h"
#include "core/check.h"
#include "core/raise.h"

using namespace kor;

namespace abecs::pan {

bool from_hex(std::string_view text, uint8_t* to) {
    if (text.size() > kMaxHexLength) {
        raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Hex string length is too big (max: %zu, requested: %zu)", kMaxHexLength,
              text.size());
        return false;
    }
    for (size_t i = 0; i < text.size(); i += 2) {
        // A last digit without its partner is a pair that ends early.
        const char pair[] = {text[i], i + 1 < text.size() ? text[i + 1] : '\0', '\0'};
        if (refuse_if(!codec::is_hex(pair[0]) || !codec::is_hex(pair[1]), "Invalid byte (%s) at position %zu", pair,
                      i)) {
            return false;
        }
        *to++ = codec::hex_byte(pair[0], pair[1]);
    }
    return true;
}

bool to_hex(std::span<const uint8_t> bytes, char* to) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    if (bytes.size() > kMaxBytes) {
        raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Bytes length is too big (max: %zu, requested: %zu)", kMaxBytes,
              bytes.size());
        return false;
    }
    for (const uint8_t byte : bytes) {
        *to++ = kDigits[byte >> 4];
        *to++ = kDigits[byte & 0x0F];
    }
    return true;
}

}  // namespace abecs::pan
