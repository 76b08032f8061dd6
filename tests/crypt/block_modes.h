// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_CRYPT_BLOCK_MODES_H
#define QUORVEL_TESTS_CRYPT_BLOCK_MODES_H

#include <string_view>

#include "quorvel/crypt/aes.h"
#include "quorvel/crypt/des.h"
#include "quorvel/crypt/tdes.h"

// The twelve functions of the block ciphers as one type, and keys for them.
namespace modes {

using Call = void (*)(const void* key, const uint8_t* in, uint8_t* out, size_t len, const uint8_t* iv);

template <auto Function>
void call(const void* key, const uint8_t* in, uint8_t* out, size_t len, const uint8_t* iv) {
    const auto passOn =
        [&]<typename Key, typename... Iv>(void (*)(const Key*, const uint8_t*, uint8_t*, size_t, Iv...)) {
            if constexpr (sizeof...(Iv) == 0) {
                Function(static_cast<const Key*>(key), in, out, len);
            } else {
                Function(static_cast<const Key*>(key), in, out, len, iv);
            }
        };
    passOn(Function);
}

struct Mode {
    const char* name;
    Call encrypt;
    Call decrypt;
};

enum Family { kDes, kTdes, kAes };

// Of each family.
constexpr struct {
    const char* cipher;
    Mode ecb;
    Mode cbc;
} kModes[]{
    {"des",
     {"DesEcb", call<crypt_des_ecb_encrypt>, call<crypt_des_ecb_decrypt>},
     {"DesCbc", call<crypt_des_cbc_encrypt>, call<crypt_des_cbc_decrypt>}},
    {"3des",
     {"TdesEcb", call<crypt_3des_ecb_encrypt>, call<crypt_3des_ecb_decrypt>},
     {"TdesCbc", call<crypt_3des_cbc_encrypt>, call<crypt_3des_cbc_decrypt>}},
    {"aes",
     {"AesEcb", call<crypt_aes_ecb_encrypt>, call<crypt_aes_ecb_decrypt>},
     {"AesCbc", call<crypt_aes_cbc_encrypt>, call<crypt_aes_cbc_decrypt>}},
};

// A key in the form that its family takes.
struct Key {
    Key(Family keyFamily, std::string_view key) : family(keyFamily) {
        tdes.keySize = static_cast<uint32_t>(key.copy(reinterpret_cast<char*>(tdes.key), sizeof tdes.key));
        if (family == kAes) { aes = crypt_aes_cipher_new(reinterpret_cast<const uint8_t*>(key.data()), key.size()); }
    }
    ~Key() { crypt_aes_cipher_delete(&aes); }
    Key(Key&&) = delete;

    [[nodiscard]] const void* get() const {
        if (family == kAes) { return aes; }
        return family == kTdes ? static_cast<const void*>(&tdes) : tdes.key;
    }

    Family family;
    Crypt3DesKey tdes{};
    CryptAesCipher* aes = nullptr;
};

}  // namespace modes

#endif
