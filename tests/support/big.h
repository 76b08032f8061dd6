// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_BIG_H
#define QUORVEL_TESTS_SUPPORT_BIG_H

#include <memory>
#include <openssl/bn.h>
#include <string>

namespace support {

// Whole numbers of another library than the one that is tested.
class Big {
public:
    explicit Big(unsigned long word = 0) { BN_set_word(number_.get(), word); }
    explicit Big(const std::string& bytes) {
        BN_bin2bn(reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()), number_.get());
    }
    // Little-endian, as it stands in memory.
    Big(const void* begin, size_t size) {
        BN_lebin2bn(static_cast<const unsigned char*>(begin), static_cast<int>(size), number_.get());
    }
    Big(const Big& other) { BN_copy(number_.get(), other.get()); }
    Big& operator=(const Big& other) { return BN_copy(number_.get(), other.get()), *this; }

    static Big of_digits(const std::string& hexadecimal) {
        Big out;
        BIGNUM* number = out.get();
        BN_hex2bn(&number, hexadecimal.c_str());
        return out;
    }

    [[nodiscard]] BIGNUM* get() const { return number_.get(); }
    [[nodiscard]] int bits() const { return BN_num_bits(get()); }
    [[nodiscard]] bool bit(int index) const { return BN_is_bit_set(get(), index) == 1; }
    [[nodiscard]] bool prime() const { return BN_check_prime(get(), context(), nullptr) == 1; }
    [[nodiscard]] std::string bytes(size_t size) const {
        std::string out(size, '\0');
        BN_bn2binpad(get(), reinterpret_cast<unsigned char*>(out.data()), static_cast<int>(size));
        return out;
    }
    [[nodiscard]] std::string little_endian(size_t size) const {
        const std::string out = bytes(size);
        return {out.rbegin(), out.rend()};
    }
    [[nodiscard]] Big to_the(const Big& exponent, const Big& modulus) const {
        Big out;
        BN_mod_exp(out.get(), get(), exponent.get(), modulus.get(), context());
        return out;
    }
    [[nodiscard]] Big inverse(const Big& modulus) const {
        Big out;
        BN_mod_inverse(out.get(), get(), modulus.get(), context());
        return out;
    }

    friend Big operator+(const Big& a, const Big& b) { return of(BN_add, a, b); }
    friend Big operator-(const Big& a, const Big& b) { return of(BN_sub, a, b); }
    friend Big operator*(const Big& a, const Big& b) { return with_context(BN_mul, a, b); }
    friend Big operator%(const Big& a, const Big& b) { return with_context(BN_nnmod, a, b); }
    friend bool operator==(const Big& a, const Big& b) { return BN_cmp(a.get(), b.get()) == 0; }
    friend bool operator<(const Big& a, const Big& b) { return BN_cmp(a.get(), b.get()) < 0; }

private:
    static Big of(int (*operation)(BIGNUM*, const BIGNUM*, const BIGNUM*), const Big& a, const Big& b) {
        Big out;
        operation(out.get(), a.get(), b.get());
        return out;
    }
    static Big with_context(int (*operation)(BIGNUM*, const BIGNUM*, const BIGNUM*, BN_CTX*), const Big& a,
                            const Big& b) {
        Big out;
        operation(out.get(), a.get(), b.get(), context());
        return out;
    }
    static BN_CTX* context() {
        static const std::unique_ptr<BN_CTX, decltype(&BN_CTX_free)> kOnly(BN_CTX_new(), BN_CTX_free);
        return kOnly.get();
    }

    std::unique_ptr<BIGNUM, decltype(&BN_free)> number_{BN_new(), BN_free};
};

}  // namespace support

#endif
