// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <tuple>

#include "quorvel/crypt/aes.h"
#include "quorvel/crypt/des.h"
#include "quorvel/crypt/tdes.h"
#include "tests/secrets/failing_cipher.h"
#include "tests/secrets/table.h"

namespace secrets {

namespace {

// The keys in the forms that the ciphers take, and two blocks that are turned into others where they stand.
struct Work {
    uint8_t des[8];
    Crypt3DesKey tdes{{}, 16};
    CryptAesCipher* aes = nullptr;
    uint8_t blocks[16]{};

    Work() {
        copy_digits(kKey.substr(0, 16), des);
        copy_digits(kKey, tdes.key);
        aes = crypt_aes_cipher_new(tdes.key, tdes.keySize);
    }
    ~Work() { crypt_aes_cipher_delete(&aes); }
    Work(Work&&) = delete;
};

using Run = void (*)(Work& work);

struct Mode {
    const char* name;
    const char* cipher;
    size_t keySize;
    size_t wiped;  // LibTomCrypt's context and the stack under it
    Run encrypt;
    Run decrypt;
};

constexpr Mode kModes[]{
    {"DesEcb", "des", 8, 8360,
     [](Work& work) { crypt_des_ecb_encrypt(work.des, work.blocks, work.blocks, sizeof work.blocks); },
     [](Work& work) { crypt_des_ecb_decrypt(work.des, work.blocks, work.blocks, sizeof work.blocks); }},
    {"DesCbc", "des", 8, 8488,
     [](Work& work) { crypt_des_cbc_encrypt(work.des, work.blocks, work.blocks, sizeof work.blocks, nullptr); },
     [](Work& work) { crypt_des_cbc_decrypt(work.des, work.blocks, work.blocks, sizeof work.blocks, nullptr); }},
    {"TdesEcb", "3des", 16, 8360,
     [](Work& work) { crypt_3des_ecb_encrypt(&work.tdes, work.blocks, work.blocks, sizeof work.blocks); },
     [](Work& work) { crypt_3des_ecb_decrypt(&work.tdes, work.blocks, work.blocks, sizeof work.blocks); }},
    {"TdesCbc", "3des", 16, 8488,
     [](Work& work) { crypt_3des_cbc_encrypt(&work.tdes, work.blocks, work.blocks, sizeof work.blocks, nullptr); },
     [](Work& work) { crypt_3des_cbc_decrypt(&work.tdes, work.blocks, work.blocks, sizeof work.blocks, nullptr); }},
    {"AesEcb", "aes", 16, 8360,
     [](Work& work) { crypt_aes_ecb_encrypt(work.aes, work.blocks, work.blocks, sizeof work.blocks); },
     [](Work& work) { crypt_aes_ecb_decrypt(work.aes, work.blocks, work.blocks, sizeof work.blocks); }},
    {"AesCbc", "aes", 16, 8488,
     [](Work& work) { crypt_aes_cbc_encrypt(work.aes, work.blocks, work.blocks, sizeof work.blocks, nullptr); },
     [](Work& work) { crypt_aes_cbc_decrypt(work.aes, work.blocks, work.blocks, sizeof work.blocks, nullptr); }},
};

// The key as it came and as the round keys that LibTomCrypt makes of it.
Secret scheduled(const Mode& mode) {
    Secret secret = of_digits("key", kKey.substr(0, 2 * mode.keySize));
    symmetric_key rounds{};
    descriptor(mode.cipher)
        .setup(reinterpret_cast<const uint8_t*>(secret.forms[0].data()), static_cast<int>(mode.keySize), 0, &rounds);
    secret.forms.emplace_back(reinterpret_cast<const char*>(&rounds), 128);
    return secret;
}

// Whatever happens, the context goes with its round keys, and the stack under the cipher.
Table ciphers() {
    const std::tuple<const char*, int, int, support::Raised> ways[]{
        {"", CRYPT_OK, CRYPT_OK, {}},
        {"WhenABlockFails", CRYPT_OK, CRYPT_FAIL_TESTVECTOR, support::error(13, "Algorithm failed test vectors.")},
        {"WhenTheKeyFails", CRYPT_INVALID_KEYSIZE, CRYPT_OK, support::error(13, "Invalid key size.")},
    };
    Table table;
    for (const Mode& mode : kModes) {
        for (const Run run : {mode.encrypt, mode.decrypt}) {
            for (const auto& [way, setup, block, raised] : ways) {
                Row row{.name = mode.name + std::string(run == mode.encrypt ? "Encrypt" : "Decrypt") + way,
                        .secrets = {scheduled(mode)},
                        .prepare =
                            [=, setup = setup, block = block, cipher = mode.cipher] {
                                const auto failing = std::make_shared<FailingCipher>(cipher, setup, block);
                                const auto work = std::make_shared<Work>();
                                return [=] { run(*work), static_cast<void>(failing); };
                            },
                        .wiped = {std::to_string(mode.wiped) + ": key"},
                        .raised = raised};
                table.push_back(std::move(row));
            }
        }
    }
    return table;
}

INSTANTIATE_TEST_SUITE_P(Ciphers, Secrets, testing::ValuesIn(ciphers()), name_of);

Row::Call delete_aes() {
    const auto work = std::make_shared<Work>();
    return [=] { crypt_aes_cipher_delete(&work->aes); };
}

INSTANTIATE_TEST_SUITE_P(CipherObjects, Secrets,
                         testing::Values(Row{"AesCipherDeleted", {key()}, delete_aes, {"36: key"}}), name_of);

}  // namespace

}  // namespace secrets
