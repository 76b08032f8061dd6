// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CRYPT_PRIME_H
#define QUORVEL_CRYPT_PRIME_H

#include "crypt/modulus.h"

namespace kor::crypt {

// Looks for the primes of RSA keys. It holds what they could be worked out from, so whoever owns it wipes it.
class PrimeSearch {
public:
    // A prime of `size` limbs of which the two highest bits are set, and which is 1 more than a number that has no
    // divisor in common with `e`. The status of drawing.
    [[nodiscard]] int find(Limb* prime, size_t size, uint32_t e);

    // Whether an odd number above 3 with a highest limb other than 0 is a prime. It takes a composite for one with a
    // probability of 2^-80 at most, whoever chose it. The status of drawing.
    [[nodiscard]] int test(bool& prime, const Limb* number, size_t size);

private:
    // The odd numbers from a start on.
    static constexpr size_t kStretch = 2048;

    void sieve(const Limb* start, size_t size);
    [[nodiscard]] int draw_base(const Limb* number);
    [[nodiscard]] bool base_passes(size_t halvings);

    Modulus modulus_;
    Half number_;
    Half exponent_;
    Half base_;
    Half power_;
    Half last_;
    std::array<bool, kStretch> composite_;
};

}  // namespace kor::crypt

#endif
