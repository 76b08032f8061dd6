// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "crypt/modulus.h"

#include <algorithm>
#include <bit>

namespace kor::crypt {

namespace {

constexpr Limb high(Wide wide) { return static_cast<Limb>(wide >> kLimbBits); }
constexpr Limb low(Wide wide) { return static_cast<Limb>(wide); }

// What the compiler knows nothing about. It makes no branch of a mask then, and no vectors of a loop, nor a call of
// memcpy: nothing here could clear the vector registers, which the next call that is bound lazily saves in the stack.
// The others are soon used for something else.
Limb hidden(Limb limb) {
    __asm__("" : "+r"(limb));
    return limb;
}

// All ones or all zeros.
Limb mask(Limb bit) { return hidden(Limb{0} - bit); }

void choose(Limb* out, Limb chosen, const Limb* number, const Limb* otherwise, size_t size) {
    for (size_t i = 0; i < size; ++i) { out[i] = hidden((number[i] & chosen) | (otherwise[i] & ~chosen)); }
}

}  // namespace

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

void Modulus::set(const Limb* number, size_t size) {
    size_ = size;
    copy(number_.data(), number, size);
    // Each step doubles the bits that are right; an odd number is its own inverse in the lowest three.
    inverse_ = number[0];
    for (size_t bits = 3; bits < kLimbBits; bits *= 2) { inverse_ *= 2 - number[0] * inverse_; }
    inverse_ = Limb{0} - inverse_;

    // From the highest power of two below the modulus up to R, by doubling.
    const size_t top = kLimbBits - 1 - static_cast<size_t>(std::countl_zero(number[size - 1]));
    std::fill_n(one_.data(), size, Limb{0});
    one_[size - 1] = Limb{1} << top;
    for (size_t bits = top; bits < kLimbBits; ++bits) { add(one_.data(), one_.data(), one_.data()); }

    // From R on to R * R: multiplying doubles how many bits it is beyond R.
    size_t beyond = kLimbBits * size;
    size_t doublings = 0;
    for (; beyond % 2 == 0; beyond /= 2) { ++doublings; }
    copy(square_.data(), one_.data(), size);
    for (; beyond > 0; --beyond) { add(square_.data(), square_.data(), square_.data()); }
    for (; doublings > 0; --doublings) { multiply(square_.data(), square_.data(), square_.data()); }
}

void Modulus::leave(Limb* out, const Limb* formed) {
    Number& one = powers_[0];
    std::fill_n(one.data(), size_, Limb{0});
    one[0] = 1;
    multiply(out, formed, one.data());
}

void Modulus::multiply(Limb* out, const Limb* a, const Limb* b) const {
    const size_t size = size_;
    const Limb* number = number_.data();
    Limb sum[kMaxLimbs];
    std::fill_n(sum, size, Limb{0});
    Limb top = 0;
    for (size_t i = 0; i < size; ++i) {
        // A multiple of the modulus that makes the lowest limb zero, which then drops out.
        const Limb factor = b[i];
        Wide product = Wide{a[0]} * factor + sum[0];
        const Limb multiple = low(product) * inverse_;
        Wide filling = Wide{number[0]} * multiple + low(product);
        for (size_t j = 1; j < size; ++j) {
            product = Wide{a[j]} * factor + sum[j] + high(product);
            filling = Wide{number[j]} * multiple + low(product) + high(filling);
            sum[j - 1] = low(filling);
        }
        const Wide last = Wide{top} + high(product) + high(filling);
        sum[size - 1] = low(last);
        top = high(last);
    }
    copy(out, sum, size);
    reduce(out, top);
}

void Modulus::power(Limb* out, const Limb* base, std::span<const Limb> exponent) {
    copy(powers_[0].data(), one_.data(), size_);
    for (size_t i = 1; i < powers_.size(); ++i) { multiply(powers_[i].data(), powers_[i - 1].data(), base); }
    Limb chosen[kMaxLimbs];
    copy(out, one_.data(), size_);
    for (size_t i = exponent.size(); i-- > 0;) {
        for (size_t shift = kLimbBits; shift > 0;) {
            shift -= kWindow;
            for (size_t step = 0; step < kWindow; ++step) { multiply(out, out, out); }
            const Limb wanted = exponent[i] >> shift & (powers_.size() - 1);
            // All of them are looked at, so that the memory's timing does not tell which one is taken.
            copy(chosen, powers_[0].data(), size_);
            for (size_t entry = 1; entry < powers_.size(); ++entry) {
                const Limb other = (wanted ^ entry) + (powers_.size() - 1);
                choose(chosen, mask(1 - (other >> kWindow)), powers_[entry].data(), chosen, size_);
            }
            multiply(out, out, chosen);
        }
    }
}

void Modulus::add(Limb* out, const Limb* a, const Limb* b) const {
    const Limb carry = crypt::add(out, a, b, size_);
    reduce(out, carry);
}

void Modulus::subtract(Limb* out, const Limb* a, const Limb* b) const {
    Limb sum[kMaxLimbs];
    const Limb borrow = crypt::subtract(out, a, b, size_);
    crypt::add(sum, out, number_.data(), size_);
    choose(out, mask(borrow), sum, out, size_);
}

void Modulus::reduce(Limb* number, Limb carry) const {
    Limb less[kMaxLimbs];
    const Limb borrow = crypt::subtract(less, number, number_.data(), size_);
    choose(number, mask(borrow & ~carry & 1), number, less, size_);
}

}  // namespace kor::crypt
