// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_MUTATION_H
#define QUORVEL_TESTS_SUPPORT_MUTATION_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

namespace support {

// Draws that are the same everywhere, which those of the library's distributions are not.
class Dice {
public:
    explicit Dice(uint32_t seed) : random_(seed) {}

    size_t below(size_t end) { return random_() % end; }
    bool one_in(size_t count) { return below(count) == 0; }
    char byte() { return static_cast<char>(below(256)); }
    const auto& among(const auto& choices) { return choices[below(choices.size())]; }

    std::string bytes(size_t size) {
        std::string bytes(size, '\0');
        std::ranges::generate(bytes, [this] { return byte(); });
        return bytes;
    }

private:
    std::mt19937 random_;
};

// The text with one thing about it changed: bits, a digit, which may be one of a length, its end, a part that is gone,
// there twice or new.
inline std::string mutated(std::string text, Dice& dice) {
    if (text.empty()) { return dice.bytes(1 + dice.below(8)); }
    const size_t at = dice.below(text.size());
    const size_t size = 1 + dice.below(dice.one_in(4) ? text.size() : 4);
    switch (dice.below(7)) {
        case 0:
            text[at] = static_cast<char>(text[at] ^ (1 << dice.below(8)));
            return text;
        case 1: {
            const size_t digit = text.find_first_of("0123456789", at);
            text[digit != std::string::npos ? digit : at] = dice.among(std::string("0123456789"));
            return text;
        }
        case 2:
            return text.substr(0, at);
        case 3:
            return text.erase(at, size);
        case 4:
            return text.insert(at, text.substr(at, size));
        case 5:
            return text.insert(at, dice.bytes(size));
        default:
            return text.replace(at, size, dice.bytes(std::min(size, text.size() - at)));
    }
}

}  // namespace support

#endif
