// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/data/wk_pan.h"

#include <cstring>

#include "core/attempt.h"
#include "core/raise.h"
#include "quorvel/crypt/des.h"
#include "quorvel/crypt/tdes.h"

namespace {

bool decipher_tdes(const AbecsWkPan& key, uint8_t* blocks, size_t size) {
    Crypt3DesKey tdes{{}, sizeof key.key};
    bool done = false;
    kor::attempt([&] {
        std::memcpy(tdes.key, key.key, sizeof key.key);
        crypt_3des_ecb_decrypt(&tdes, blocks, blocks, size);
        done = true;
    }).cleanup([&] {
          explicit_bzero(&tdes, sizeof tdes);
      }).run();
    return done;
}

}  // namespace

bool abecs::decipher(const AbecsWkPan& key, uint8_t* blocks, size_t size) {
    switch (key.type) {
        case ABECS_WK_PAN_TYPE_DES:
            crypt_des_ecb_decrypt(key.key, blocks, blocks, size);
            return true;
        case ABECS_WK_PAN_TYPE_TDES:
        case ABECS_WK_PAN_TYPE_TDES_RSA:
            return decipher_tdes(key, blocks, size);
        default:
            return kor::raise(KOR_RESULT_RUNTIME_ERROR, "Unhandled case"), false;
    }
}
