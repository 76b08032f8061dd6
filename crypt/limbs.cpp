// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "crypt/limbs.h"

#include <algorithm>

namespace kor::crypt {

Limb add(Limb* out, const Limb* a, const Limb* b, size_t size) {
    Limb carry = 0;
    for (size_t i = 0; i < size; ++i) {
        const Wide sum = Wide{a[i]} + b[i] + carry;
        out[i] = low(sum);
        carry = high(sum);
    }
    return carry;
}

Limb subtract(Limb* out, const Limb* a, const Limb* b, size_t size) {
    Limb borrow = 0;
    for (size_t i = 0; i < size; ++i) {
        const Wide difference = Wide{a[i]} - b[i] - borrow;
        out[i] = low(difference);
        borrow = high(difference) & 1;
    }
    return borrow;
}

Limb add_small(Limb* out, const Limb* a, Limb b, size_t size) {
    for (size_t i = 0; i < size; ++i) {
        const Wide sum = Wide{a[i]} + b;
        out[i] = low(sum);
        b = high(sum);
    }
    return b;
}

Limb subtract_small(Limb* out, const Limb* a, Limb b, size_t size) {
    for (size_t i = 0; i < size; ++i) {
        const Wide difference = Wide{a[i]} - b;
        out[i] = low(difference);
        b = high(difference) & 1;
    }
    return b;
}

Limb multiply_small(Limb* out, const Limb* a, Limb b, size_t size) {
    Limb carry = 0;
    for (size_t i = 0; i < size; ++i) {
        const Wide product = Wide{a[i]} * b + carry;
        out[i] = low(product);
        carry = high(product);
    }
    return carry;
}

void halve(Limb* number, size_t size) {
    Limb above = 0;
    for (size_t i = size; i-- > 0;) {
        const Limb limb = hidden(number[i]);
        number[i] = limb >> 1 | above << (kLimbBits - 1);
        above = limb;
    }
}

void multiply(Limb* out, const Limb* a, const Limb* b, size_t size) {
    std::fill_n(out, 2 * size, Limb{0});
    for (size_t i = 0; i < size; ++i) {
        Limb carry = 0;
        for (size_t j = 0; j < size; ++j) {
            const Wide sum = Wide{a[j]} * b[i] + out[i + j] + carry;
            out[i + j] = low(sum);
            carry = high(sum);
        }
        out[i + size] = carry;
    }
}

// By halves of 32 bits, which every processor divides.
uint32_t remainder(const Limb* number, uint32_t divisor, size_t size) {
    uint64_t rest = 0;
    for (size_t i = size; i-- > 0;) {
        for (size_t shift = kLimbBits; shift > 0;) {
            shift -= 32;
            rest = (rest << 32 | (number[i] >> shift & UINT32_MAX)) % divisor;
        }
    }
    return static_cast<uint32_t>(rest);
}

void divide(Limb* number, uint32_t divisor, size_t size) {
    uint64_t rest = 0;
    for (size_t i = size; i-- > 0;) {
        Limb quotient = 0;
        for (size_t shift = kLimbBits; shift > 0;) {
            shift -= 32;
            rest = rest << 32 | (number[i] >> shift & UINT32_MAX);
            quotient |= static_cast<Limb>(rest / divisor) << shift;
            rest %= divisor;
        }
        number[i] = quotient;
    }
}

void choose(Limb* out, Limb chosen, const Limb* number, const Limb* otherwise, size_t size) {
    for (size_t i = 0; i < size; ++i) { out[i] = hidden((number[i] & chosen) | (otherwise[i] & ~chosen)); }
}

void copy(Limb* out, const Limb* number, size_t size) {
    for (size_t i = 0; i < size; ++i) { out[i] = hidden(number[i]); }
}

bool equal(const Limb* a, const Limb* b, size_t size) {
    Limb differing = 0;
    for (size_t i = 0; i < size; ++i) { differing |= hidden(a[i] ^ b[i]); }
    return differing == 0;
}

bool below(const Limb* a, const Limb* b, size_t size) {
    Limb borrow = 0;
    for (size_t i = 0; i < size; ++i) { borrow = high(Wide{a[i]} - b[i] - borrow) & 1; }
    return borrow != 0;
}

size_t significant(const Limb* number, size_t size) {
    while (size > 0 && number[size - 1] == 0) { --size; }
    return size;
}

void from_bytes(std::span<Limb> number, std::span<const uint8_t> bytes) {
    std::ranges::fill(number, Limb{0});
    for (size_t i = 0; i < bytes.size(); ++i) {
        const Limb byte = hidden(bytes[bytes.size() - 1 - i]);
        number[i / sizeof(Limb)] |= byte << (8 * (i % sizeof(Limb)));
    }
}

void to_bytes(std::span<uint8_t> bytes, const Limb* number) {
    for (size_t i = 0; i < bytes.size(); ++i) {
        bytes[bytes.size() - 1 - i] =
            static_cast<uint8_t>(hidden(number[i / sizeof(Limb)]) >> (8 * (i % sizeof(Limb))));
    }
}

}  // namespace kor::crypt
