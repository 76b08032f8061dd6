// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CRYPT_MODULUS_H
#define QUORVEL_CRYPT_MODULUS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

// The arithmetic under RSA private keys. LibTomMath's would leave the numbers in freed memory, which it neither clears
// nor lets anyone else reach; nothing here allocates, so that whoever owns a number can overwrite all there is of it.
// Nor does the time that a function takes, or the memory that it looks at, depend on more than the sizes of numbers,
// unless its comment says so.
namespace kor::crypt {

#ifdef __SIZEOF_INT128__
using Limb = uint64_t;
__extension__ using Wide = unsigned __int128;
#else
using Limb = uint32_t;
using Wide = uint64_t;
#endif

constexpr size_t kLimbBits = 8 * sizeof(Limb);
constexpr size_t kMaxLimbs = 2048 / kLimbBits;

// A number is a row of limbs, the lowest first.
using Number = std::array<Limb, kMaxLimbs>;
using Half = std::array<Limb, kMaxLimbs / 2>;

// Give the carry or the borrow. `out` may be an operand.
Limb add(Limb* out, const Limb* a, const Limb* b, size_t size);
Limb subtract(Limb* out, const Limb* a, const Limb* b, size_t size);
Limb add_small(Limb* out, const Limb* a, Limb b, size_t size);
Limb subtract_small(Limb* out, const Limb* a, Limb b, size_t size);
// Gives the limb that carries over.
Limb multiply_small(Limb* out, const Limb* a, Limb b, size_t size);
void halve(Limb* number, size_t size);
// `out` has 2 * `size` limbs and is none of the operands.
void multiply(Limb* out, const Limb* a, const Limb* b, size_t size);
[[nodiscard]] uint32_t remainder(const Limb* number, uint32_t divisor, size_t size);
// In place.
void divide(Limb* number, uint32_t divisor, size_t size);

void copy(Limb* out, const Limb* number, size_t size);
[[nodiscard]] bool equal(const Limb* a, const Limb* b, size_t size);
[[nodiscard]] bool below(const Limb* a, const Limb* b, size_t size);
// Without the leading zeros, which it counts in a time that tells how many there are.
[[nodiscard]] size_t significant(const Limb* number, size_t size);

// Big-endian bytes; `number` has room for them, and what is left of it becomes zero.
void from_bytes(std::span<Limb> number, std::span<const uint8_t> bytes);
void to_bytes(std::span<uint8_t> bytes, const Limb* number);

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
