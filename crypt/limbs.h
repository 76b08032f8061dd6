// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CRYPT_LIMBS_H
#define QUORVEL_CRYPT_LIMBS_H

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

constexpr Limb high(Wide wide) { return static_cast<Limb>(wide >> kLimbBits); }
constexpr Limb low(Wide wide) { return static_cast<Limb>(wide); }

// What the compiler knows nothing about. It makes no branch of a mask then, and no vectors of a loop, nor a call of
// memcpy: nothing here could clear the vector registers, which the next call that is bound lazily saves in the stack.
// The others are soon used for something else.
inline Limb hidden(Limb limb) {
    __asm__("" : "+r"(limb));
    return limb;
}

// All ones or all zeros.
inline Limb mask(Limb bit) { return hidden(Limb{0} - bit); }

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

// `number` where `chosen` is all ones, `otherwise` where it is all zeros.
void choose(Limb* out, Limb chosen, const Limb* number, const Limb* otherwise, size_t size);
void copy(Limb* out, const Limb* number, size_t size);
[[nodiscard]] bool equal(const Limb* a, const Limb* b, size_t size);
[[nodiscard]] bool below(const Limb* a, const Limb* b, size_t size);
// Without the leading zeros, which it counts in a time that tells how many there are.
[[nodiscard]] size_t significant(const Limb* number, size_t size);

// Big-endian bytes; `number` has room for them, and what is left of it becomes zero.
void from_bytes(std::span<Limb> number, std::span<const uint8_t> bytes);
void to_bytes(std::span<uint8_t> bytes, const Limb* number);

}  // namespace kor::crypt

#endif
