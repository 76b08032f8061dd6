// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>

#include "crypt/modulus.h"

// Making a key is nothing but this.
namespace kor::crypt {

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

void Modulus::reduce(Limb* number, Limb carry) const {
    Limb less[kMaxLimbs];
    const Limb borrow = crypt::subtract(less, number, number_.data(), size_);
    choose(number, mask(borrow & ~carry & 1), number, less, size_);
}

}  // namespace kor::crypt
