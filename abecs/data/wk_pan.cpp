// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/data/wk_pan.h"

#include "abecs/data/tdes_key.h"
#include "core/raise.h"
#include "quorvel/crypt/des.h"

using namespace abecs;
using namespace kor;

bool abecs::decipher(const AbecsWkPan& key, uint8_t* blocks, size_t size) {
    switch (key.type) {
        case ABECS_WK_PAN_TYPE_DES:
            crypt_des_ecb_decrypt(key.key, blocks, blocks, size);
            return true;
        case ABECS_WK_PAN_TYPE_TDES:
        case ABECS_WK_PAN_TYPE_TDES_RSA:
            return apply_tdes(crypt_3des_ecb_decrypt, key.key, blocks, size);
        default:
            return raise(KOR_RESULT_RUNTIME_ERROR, "Unhandled case"), false;
    }
}
