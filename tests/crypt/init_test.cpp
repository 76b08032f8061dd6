// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/crypt/init.h"

#include "crypt/registry.h"
#include "quorvel/crypt/aes.h"
#include "quorvel/crypt/des.h"
#include "quorvel/crypt/tdes.h"
#include "tests/support/raised.h"

namespace {

// Takes the place of `ours` away by filling the table with copies that differ in the number that tells them apart.
template <typename Descriptor, typename Number>
void expect_refusal(int (*add)(const Descriptor*), int (*remove)(const Descriptor*), Number Descriptor::*number,
                    const Descriptor& ours, const char* detail) {
    ASSERT_EQ(remove(&ours), CRYPT_OK);
    std::vector<Descriptor> fillers;
    for (unsigned char i = 100; i < 200; ++i) {
        Descriptor filler = ours;
        filler.name = "filler";
        filler.*number = static_cast<Number>(i);
        if (add(&filler) == -1) { break; }
        fillers.push_back(filler);
    }
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, detail, crypt_init());
    for (const Descriptor& filler : fillers) { ASSERT_EQ(remove(&filler), CRYPT_OK); }
    EXPECT_NO_RAISE(crypt_init());
}

void expect_ciphers_to_work() {
    uint8_t block[16]{};
    const Crypt3DesKey tdes{.key = {}, .keySize = 24};
    EXPECT_NO_RAISE(crypt_des_ecb_encrypt(tdes.key, block, block, sizeof block));
    EXPECT_NO_RAISE(crypt_3des_ecb_encrypt(&tdes, block, block, sizeof block));
    CryptAesCipher* aes = crypt_aes_cipher_new(tdes.key, sizeof tdes.key);
    EXPECT_NO_RAISE(crypt_aes_ecb_encrypt(aes, block, block, sizeof block));
    crypt_aes_cipher_delete(&aes);
}

TEST(CryptInit, NamesWhatDoesNotFitTheTables) {
    constexpr auto kId = &ltc_cipher_descriptor::ID;
    expect_refusal(register_prng, unregister_prng, &ltc_prng_descriptor::export_size, sprng_desc,
                   "Error registering SPRNG");
    expect_refusal(register_hash, unregister_hash, &ltc_hash_descriptor::ID, sha1_desc, "Error registering SHA-1");
    expect_refusal(register_cipher, unregister_cipher, kId, aes_desc, "Error registering AES");
    expect_refusal(register_cipher, unregister_cipher, kId, des_desc, "Error registering DES");
    expect_refusal(register_cipher, unregister_cipher, kId, des3_desc, "Error registering 3DES");
    expect_ciphers_to_work();
}

// An application may have registered AES by its older name, which looking up "aes" would not find.
TEST(CryptInit, TakesAesUnderItsOtherName) {
    ASSERT_EQ(unregister_cipher(&aes_desc), CRYPT_OK);
    ASSERT_NE(register_cipher(&rijndael_desc), -1);
    EXPECT_NO_RAISE(crypt_init());
    expect_ciphers_to_work();
    ASSERT_EQ(unregister_cipher(&rijndael_desc), CRYPT_OK);
    EXPECT_NO_RAISE(crypt_init());
}

}  // namespace
