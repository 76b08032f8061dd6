// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "crypt/rsa_key.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "crypt/prime.h"
#include "crypt/registry.h"
#include "crypt/stack.h"

namespace kor::crypt {

namespace {

using Bytes = std::span<const uint8_t>;

// All that the private operation works out on its way.
struct Exponentiation {
    Modulus modulus;
    Number in;
    Number out;
    Number check;
    Half ofP;
    Half ofQ;
    Half part;

    [[nodiscard]] int run(const CryptRsaKey& key, Bytes bytes, std::span<uint8_t> result);
    [[nodiscard]] bool by_primes(const CryptRsaKey& key);
    void modulo_prime(Half& result, const Half& prime, const Half& exponent, size_t size);
};

// The larger one of the two frames that hold most, and what the functions below it take.
constexpr size_t kUsedStack = std::max(sizeof(PrimeSearch), sizeof(Exponentiation)) + 4096;

// The inverse of a number modulo another one that it has no divisor in common with.
uint32_t inverse_of(uint32_t number, uint32_t modulus) {
    int64_t inverse = 0;
    int64_t next = 1;
    int64_t dividend = modulus;
    int64_t divisor = number;
    while (divisor != 0) {
        const int64_t quotient = dividend / divisor;
        inverse = std::exchange(next, inverse - quotient * next);
        dividend = std::exchange(divisor, dividend - quotient * divisor);
    }
    return static_cast<uint32_t>(inverse < 0 ? inverse + modulus : inverse);
}

// The inverse of e modulo p - 1: (1 + k * (p - 1)) / e, with the k that makes this a whole number.
void invert_exponent(Half& inverse, const Half& p, uint32_t e, size_t size) {
    Limb number[kMaxLimbs / 2 + 1];
    subtract_small(number, p.data(), 1, size);
    const uint32_t k = e - inverse_of(remainder(number, e, size), e);
    number[size] = multiply_small(number, number, k, size);
    add_small(number, number, 1, size + 1);
    divide(number, e, size + 1);
    copy(inverse.data(), number, size);
}

// q ^ (p - 2), by Fermat.
[[gnu::noinline]] void invert_q(CryptRsaKey& key) {
    Modulus modulus;
    Half exponent;
    const size_t size = key.primeSize;
    modulus.set(key.p.data(), size);
    subtract_small(exponent.data(), key.p.data(), 2, size);
    modulus.enter(key.qP.data(), key.q.data());
    modulus.power(key.qP.data(), key.qP.data(), {exponent.data(), size});
    modulus.leave(key.qP.data(), key.qP.data());
}

[[gnu::noinline]] int find_primes(CryptRsaKey& key, uint32_t e) {
    PrimeSearch search;
    int status = search.find(key.p.data(), key.primeSize, e);
    if (status != CRYPT_OK) { return status; }
    do {
        status = search.find(key.q.data(), key.primeSize, e);
    } while (status == CRYPT_OK && !far_apart(key.p.data(), key.q.data(), key.primeSize));
    return status;
}

int Exponentiation::run(const CryptRsaKey& key, Bytes bytes, std::span<uint8_t> result) {
    while (!bytes.empty() && bytes.front() == 0) { bytes = bytes.subspan(1); }
    if (bytes.size() > key.modulusSize) { return CRYPT_PK_INVALID_SIZE; }
    from_bytes(in, bytes);
    if (below(key.modulus.data(), in.data(), in.size())) { return CRYPT_PK_INVALID_SIZE; }
    // Anything can be loaded as a modulus.
    const size_t size = significant(key.modulus.data(), key.modulus.size());
    if (key.modulus[0] % 2 == 0 || (size == 1 && key.modulus[0] == 1)) { return CRYPT_INVALID_ARG; }
    if (key.modulusSize > result.size()) { return CRYPT_BUFFER_OVERFLOW; }
    if (key.primeSize != 0) {
        if (!by_primes(key)) { return CRYPT_ERROR; }
    } else {
        modulus.set(key.modulus.data(), size);
        modulus.enter(out.data(), in.data());
        modulus.power(out.data(), out.data(), key.private_exponent());
        modulus.leave(out.data(), out.data());
    }
    to_bytes(result.first(key.modulusSize), out.data());
    return CRYPT_OK;
}

// False when the result is not right: a single one that went wrong modulo one prime would tell both.
bool Exponentiation::by_primes(const CryptRsaKey& key) {
    const size_t size = key.primeSize;
    modulo_prime(ofQ, key.q, key.dQ, size);
    modulo_prime(ofP, key.p, key.dP, size);

    // ofQ + q * ((ofP - ofQ) / q modulo p). A number below one prime is below twice the other.
    copy(part.data(), ofQ.data(), size);
    modulus.reduce(part.data());
    modulus.subtract(part.data(), ofP.data(), part.data());
    modulus.enter(part.data(), part.data());
    modulus.multiply(part.data(), part.data(), key.qP.data());
    multiply(out.data(), part.data(), key.q.data(), size);
    const Limb carry = add(out.data(), out.data(), ofQ.data(), size);
    add_small(out.data() + size, out.data() + size, carry, size);

    Limb exponent = 0;
    from_bytes({&exponent, 1}, {key.exponent.data(), key.exponentSize});
    modulus.set(key.modulus.data(), 2 * size);
    modulus.enter(check.data(), out.data());
    modulus.power(check.data(), check.data(), {&exponent, 1});
    modulus.leave(check.data(), check.data());
    modulus.reduce(in.data());
    return equal(check.data(), in.data(), 2 * size);
}

// Leaves `modulus` at the prime.
void Exponentiation::modulo_prime(Half& result, const Half& prime, const Half& exponent, size_t size) {
    modulus.set(prime.data(), size);
    // The upper half times R, which is what entering makes of it, and the lower one: below R, as their sum is.
    modulus.enter(result.data(), in.data() + size);
    modulus.add(result.data(), result.data(), in.data());
    modulus.enter(result.data(), result.data());
    modulus.power(result.data(), result.data(), {exponent.data(), size});
    modulus.leave(result.data(), result.data());
}

}  // namespace

int generate(CryptRsaKey& key, size_t size, uint32_t e) {
    if (e < 3 || e % 2 == 0) { return CRYPT_INVALID_ARG; }
    key.modulusSize = size;
    key.exponentSize = key.exponent.size() - static_cast<size_t>(std::countl_zero(e)) / 8;
    const Limb exponent = e;
    to_bytes({key.exponent.data(), key.exponentSize}, &exponent);
    key.primeSize = size / 2 / sizeof(Limb);
    return without_trace<kUsedStack>([&] {
        const int status = find_primes(key, e);
        if (status != CRYPT_OK) { return status; }
        multiply(key.modulus.data(), key.p.data(), key.q.data(), key.primeSize);
        invert_exponent(key.dP, key.p, e, key.primeSize);
        invert_exponent(key.dQ, key.q, e, key.primeSize);
        invert_q(key);
        return status;
    });
}

int raise_to_private(const CryptRsaKey& key, Bytes in, std::span<uint8_t> out) {
    return without_trace<kUsedStack>([&] {
        Exponentiation exponentiation;
        return exponentiation.run(key, in, out);
    });
}

bool far_apart(const Limb* p, const Limb* q, size_t size) {
    constexpr size_t kBits = 100;
    const size_t bit = size * kLimbBits - kBits;
    const bool ordered = below(q, p, size);
    Half difference;
    subtract(difference.data(), ordered ? p : q, ordered ? q : p, size);
    // More than the power of two: one less still reaches it.
    if (subtract_small(difference.data(), difference.data(), 1, size) != 0) { return false; }
    const size_t index = bit / kLimbBits;
    return significant(difference.data(), size) > index + 1 || difference[index] >> bit % kLimbBits != 0;
}

}  // namespace kor::crypt
