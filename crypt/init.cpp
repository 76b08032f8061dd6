// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/crypt/init.h"

#include "core/raise.h"
#include "crypt/registry.h"

using namespace kor;

namespace kor::crypt {

Registry registry;

bool succeeded(int status) {
    if (status == CRYPT_OK) { return true; }
    return raise(KOR_RESULT_CRYPT_ERROR, "%s", error_to_string(status)), false;
}

}  // namespace kor::crypt

// Registering says where the algorithm stands, also when it already did: looking it up by name afterwards could miss
// an algorithm that the application registered under another name.
[[gnu::constructor]] void crypt_init() {
    kor::crypt::Registry found;
    ltc_mp = ltm_desc;
    found.sprng = register_prng(&sprng_desc);
    if (found.sprng == -1) { return raise(KOR_RESULT_RUNTIME_ERROR, "Error registering SPRNG"); }
    found.sha1 = register_hash(&sha1_desc);
    if (found.sha1 == -1) { return raise(KOR_RESULT_RUNTIME_ERROR, "Error registering SHA-1"); }
    found.aes = register_cipher(&aes_desc);
    if (found.aes == -1) { return raise(KOR_RESULT_RUNTIME_ERROR, "Error registering AES"); }
    found.des = register_cipher(&des_desc);
    if (found.des == -1) { return raise(KOR_RESULT_RUNTIME_ERROR, "Error registering DES"); }
    found.tdes = register_cipher(&des3_desc);
    if (found.tdes == -1) { return raise(KOR_RESULT_RUNTIME_ERROR, "Error registering 3DES"); }
    kor::crypt::registry = found;
}
