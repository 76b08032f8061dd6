// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "crypt/prime.h"

#include <bit>
#include <numeric>
#include <utility>

#include "crypt/random.h"
#include "crypt/registry.h"

namespace kor::crypt {

namespace {

// A composite passes a round with a probability of 1/4 at most.
constexpr int kRounds = 40;

constexpr uint32_t kLimit = 8192;

// Whether half of the index is an odd prime.
constexpr std::array<bool, kLimit / 2> kOddPrime = [] {
    std::array<bool, kLimit / 2> prime{};
    for (size_t i = 1; i < prime.size(); ++i) { prime[i] = true; }
    for (size_t i = 1; i < prime.size(); ++i) {
        const size_t number = 2 * i + 1;
        if (!prime[i]) { continue; }
        for (size_t multiple = number * number; multiple < kLimit; multiple += 2 * number) {
            prime[multiple / 2] = false;
        }
    }
    return prime;
}();

constexpr size_t kCount = [] {
    size_t count = 0;
    for (const bool prime : kOddPrime) { count += prime ? 1 : 0; }
    return count;
}();
static_assert(kCount == 1027);

// From 1 to the first odd prime, and from each to the next.
constexpr std::array<uint8_t, kCount> kPrimeSteps = [] {
    std::array<uint8_t, kCount> steps{};
    size_t count = 0;
    size_t last = 0;
    for (size_t i = 1; i < kOddPrime.size(); ++i) {
        if (kOddPrime[i]) { steps[count++] = static_cast<uint8_t>(2 * (i - std::exchange(last, i))); }
    }
    return steps;
}();

}  // namespace

int PrimeSearch::find(Limb* prime, size_t size, uint32_t e) {
    constexpr Limb kTwoHighestBits = Limb{3} << (kLimbBits - 2);
    for (;;) {
        if (const int status = draw(number_.data(), size * sizeof(Limb)); status != CRYPT_OK) { return status; }
        number_[size - 1] |= kTwoHighestBits;
        number_[0] |= 1;
        sieve(number_.data(), size);
        for (size_t i = 0; i < kStretch; ++i) {
            if (composite_[i]) { continue; }
            // Beyond the highest number of the size begins the next draw.
            if (add_small(prime, number_.data(), 2 * i, size) != 0) { break; }
            if (std::gcd((remainder(prime, e, size) + uint64_t{e} - 1) % e, e) != 1) { continue; }
            bool found = false;
            if (const int status = test(found, prime, size); status != CRYPT_OK || found) { return status; }
        }
    }
}

// Strikes out the multiples of the small primes, which are nine candidates in ten.
void PrimeSearch::sieve(const Limb* start, size_t size) {
    composite_.fill(false);
    uint32_t prime = 1;
    for (const uint8_t step : kPrimeSteps) {
        prime += step;
        const uint32_t missing = (prime - remainder(start, prime, size)) % prime;
        const uint32_t first = missing % 2 == 0 ? missing / 2 : (missing + prime) / 2;
        for (size_t i = first; i < kStretch; i += prime) { composite_[i] = true; }
    }
}

// The test of Miller and Rabin.
int PrimeSearch::test(bool& prime, const Limb* number, size_t size) {
    modulus_.set(number, size);
    // Minus one, in the form of the powers.
    subtract(last_.data(), number, modulus_.one(), size);
    subtract_small(exponent_.data(), number, 1, size);
    size_t halvings = 0;
    for (; exponent_[0] % 2 == 0; ++halvings) { halve(exponent_.data(), size); }
    prime = true;
    for (int round = 0; prime && round < kRounds; ++round) {
        if (const int status = draw_base(number); status != CRYPT_OK) { return status; }
        prime = base_passes(halvings);
    }
    return CRYPT_OK;
}

// Any number below the modulus is some base in the form, and each as likely as any other.
int PrimeSearch::draw_base(const Limb* number) {
    const size_t size = modulus_.size();
    const Limb highest = ~Limb{0} >> std::countl_zero(number[size - 1]);
    for (;;) {
        const int status = draw(base_.data(), size * sizeof(Limb));
        base_[size - 1] &= highest;
        if (status != CRYPT_OK || below(base_.data(), number, size)) { return status; }
    }
}

bool PrimeSearch::base_passes(size_t halvings) {
    const size_t size = modulus_.size();
    modulus_.power(power_.data(), base_.data(), {exponent_.data(), size});
    if (equal(power_.data(), modulus_.one(), size)) { return true; }
    for (;;) {
        if (equal(power_.data(), last_.data(), size)) { return true; }
        if (--halvings == 0) { return false; }
        modulus_.multiply(power_.data(), power_.data(), power_.data());
    }
}

}  // namespace kor::crypt
