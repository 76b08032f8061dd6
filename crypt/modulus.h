// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CRYPT_MODULUS_H
#define QUORVEL_CRYPT_MODULUS_H

#include <array>
#include <cstddef>
#include <span>

#include "crypt/limbs.h"

namespace kor::crypt {

// Remainders modulo an odd number above 1, in Montgomery's form: a stands as a * R mod m, where R = 2 ^ bits of `size`
// limbs. It holds the number and all that is worked out with it, so whoever owns it wipes it.
class Modulus {
public:
    void set(const Limb* number, size_t size);
    [[nodiscard]] size_t size() const { return size_; }
    [[nodiscard]] const Limb* one() const { return one_.data(); }

    // A number below R takes the form, or leaves it.
    void enter(Limb* out, const Limb* number) { multiply(out, number, square_.data()); }
    void leave(Limb* out, const Limb* formed);

    // a * b / R, below the modulus if one of the two is.
    void multiply(Limb* out, const Limb* a, const Limb* b) const;
    void power(Limb* out, const Limb* base, std::span<const Limb> exponent);

    // Of numbers below the modulus, in the form or not. The second one to add need only be below R; the sum then is
    // too.
    void add(Limb* out, const Limb* a, const Limb* b) const;
    void subtract(Limb* out, const Limb* a, const Limb* b) const;
    // Of a number below twice the modulus, of which `carry` is the highest bit.
    void reduce(Limb* number, Limb carry = 0) const;

private:
    static constexpr size_t kWindow = 4;

    size_t size_;
    Limb inverse_;
    Number number_;
    Number one_;
    Number square_;
    std::array<Number, size_t{1} << kWindow> powers_;
};

}  // namespace kor::crypt

#endif
