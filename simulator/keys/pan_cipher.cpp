// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/keys/pan_cipher.h"

#include <algorithm>

#include "simulator/keys/block_cipher.h"
#include "wire/hex.h"

namespace quorvel::sim {

namespace {

constexpr size_t shortestPan = 13;
constexpr size_t blockDigits = 2 * blockSize;
constexpr char filling = 'F';
// A blank inside a card number has no digit of its own.
constexpr char blankDigit = 'E';

constexpr std::string_view decimalDigits = "0123456789";
constexpr std::string_view panCharacters = "0123456789 ";
constexpr std::string_view hexDigits = "0123456789ABCDEF";
constexpr std::string_view separators = "^=";

bool consists_of(std::string_view text, std::string_view characters) {
    return text.find_first_not_of(characters) == std::string_view::npos;
}

std::string enciphered(std::string_view digits, ByteView key) { return to_hex(encipher(key, from_hex(digits))); }

}  // namespace

std::string protect_pan(std::string_view text, ByteView key) {
    const size_t end = std::min(text.find_first_of(separators), text.size());
    const size_t start = std::min(text.find_first_of(panCharacters), end);
    const std::string_view pan = text.substr(start, end - start);
    const bool readable = consists_of(text.substr(0, start), hexDigits) && consists_of(pan, panCharacters);
    if (pan.size() < shortestPan || !readable) return std::string(text);
    std::string digits(pan);
    std::ranges::replace(digits, ' ', blankDigit);
    digits.resize(std::max(digits.size(), blockDigits), filling);
    const std::string_view block = std::string_view(digits).substr(digits.size() - blockDigits);
    const size_t before = start + digits.size() - blockDigits;
    return std::string(text.substr(0, before)) + enciphered(block, key) + std::string(text.substr(end));
}

std::string expose_pan(std::string_view pan, ByteView key) {
    if (pan.size() < blockDigits || !consists_of(pan, hexDigits)) return std::string(pan);
    const size_t before = pan.size() - blockDigits;
    std::string clear = std::string(pan.substr(0, before)) + enciphered(pan.substr(before), key);
    clear.erase(clear.find_last_not_of(filling) + 1);
    return clear.size() >= shortestPan && consists_of(clear, decimalDigits) ? clear : std::string(pan);
}

}  // namespace quorvel::sim
