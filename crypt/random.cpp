// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "crypt/random.h"

#include <cerrno>
#include <cstdint>
#include <sys/random.h>

#include "crypt/registry.h"

namespace kor::crypt {

int draw(void* out, size_t size) {
    auto* place = static_cast<uint8_t*>(out);
    while (size != 0) {
        const ssize_t given = getrandom(place, size, 0);
        if (given < 0 && errno == EINTR) { continue; }
        if (given <= 0) { return CRYPT_ERROR_READPRNG; }
        place += given;
        size -= static_cast<size_t>(given);
    }
    return CRYPT_OK;
}

}  // namespace kor::crypt
