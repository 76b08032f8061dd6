// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CRYPT_RANDOM_H
#define QUORVEL_CRYPT_RANDOM_H

#include <cstddef>

namespace kor::crypt {

// Fills `size` bytes from the kernel's generator, which needs no descriptor and no file. CRYPT_ERROR_READPRNG where the
// kernel does not give them: nothing takes its place, least of all the clock.
[[nodiscard]] int draw(void* out, size_t size);

}  // namespace kor::crypt

#endif
