// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/keys/pan_cipher.h"

#include <algorithm>

#include "simulator/keys/block_cipher.h"
#include "wire/hex.h"

namespace quorvel::sim {

namespace {

constexpr size_t kShortestPan = 13;
constexpr size_t kBlockDigits = 2 * kBlockSize;
constexpr char kFilling = 'F';
// A blank inside a card number has no digit of its own.
constexpr char kBlankDigit = 'E';

constexpr std::string_view kDecimalDigits = "0123456789";
constexpr std::string_view kPanCharacters = "0123456789 ";
constexpr std::string_view kHexDigits = "0123456789ABCDEF";
constexpr std::string_view kSeparators = "^=";

bool consists_of(std::string_view text, std::string_view characters) {
    return text.find_first_not_of(characters) == std::string_view::npos;
}

std::string enciphered(std::string_view digits, ByteView key) { return to_hex(encipher(key, from_hex(digits))); }

}  // namespace

std::string protect_pan(std::string_view text, ByteView key) {
    const size_t end = std::min(text.find_first_of(kSeparators), text.size());
    const size_t start = std::min(text.find_first_of(kPanCharacters), end);
    const std::string_view pan = text.substr(start, end - start);
    const bool readable = consists_of(text.substr(0, start), kHexDigits) && consists_of(pan, kPanCharacters);
    if (pan.size() < kShortestPan || !readable) { return std::string(text); }
    std::string digits(pan);
    std::ranges::replace(digits, ' ', kBlankDigit);
    digits.resize(std::max(digits.size(), kBlockDigits), kFilling);
    const std::string_view block = std::string_view(digits).substr(digits.size() - kBlockDigits);
    const size_t before = start + digits.size() - kBlockDigits;
    return std::string(text.substr(0, before)) + enciphered(block, key) + std::string(text.substr(end));
}

std::string expose_pan(std::string_view pan, ByteView key) {
    if (pan.size() < kBlockDigits || !consists_of(pan, kHexDigits)) { return std::string(pan); }
    const size_t before = pan.size() - kBlockDigits;
    std::string clear = std::string(pan.substr(0, before)) + enciphered(pan.substr(before), key);
    clear.erase(clear.find_last_not_of(kFilling) + 1);
    return clear.size() >= kShortestPan && consists_of(clear, kDecimalDigits) ? clear : std::string(pan);
}

}  // namespace quorvel::sim
