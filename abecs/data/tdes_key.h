// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_TDES_KEY_H
#define QUORVEL_ABECS_DATA_TDES_KEY_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/attempt.h"
#include "quorvel/crypt/tdes.h"

namespace abecs {

// Runs `cipher` over whole blocks in place, under a key of two parts of which no copy stays behind.
[[nodiscard]] inline bool apply_tdes(decltype(crypt_3des_ecb_encrypt)& cipher, const uint8_t (&key)[16],
                                     uint8_t* blocks, size_t size) {
    Crypt3DesKey tdes{{}, sizeof key};
    bool done = false;
    kor::attempt([&] {
        std::memcpy(tdes.key, key, sizeof key);
        cipher(&tdes, blocks, blocks, size);
        done = true;
    }).cleanup([&] {
          explicit_bzero(&tdes, sizeof tdes);
      }).run();
    return done;
}

}  // namespace abecs

#endif
