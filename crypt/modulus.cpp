// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "crypt/modulus.h"

#include <algorithm>
#include <bit>

namespace kor::crypt {

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

}  // namespace kor::crypt
