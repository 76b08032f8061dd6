// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/crypt/block_modes.h"
#include "tests/secrets/table.h"

using namespace secrets;

namespace {

using namespace modes;

// A key in the form that the cipher takes, and two blocks that are turned into others where they stand.
struct Work {
    explicit Work(Family family) : key(family, from_digits(kKey).substr(0, family == kDes ? 8 : 16)) {}

    Key key;
    uint8_t blocks[16]{};
};

// The key as it came and as the round keys that LibTomCrypt makes of it.
Secret scheduled(Family family) {
    Secret secret = of_digits("key", kKey.substr(0, family == kDes ? 16 : 32));
    const std::string& bytes = secret.forms[0];
    symmetric_key rounds{};
    descriptor(kModes[family].cipher)
        .setup(reinterpret_cast<const uint8_t*>(bytes.data()), static_cast<int>(bytes.size()), 0, &rounds);
    secret.forms.emplace_back(reinterpret_cast<const char*>(&rounds), 128);
    return secret;
}

// Whatever happens, LibTomCrypt's context goes with its round keys, and the stack under the cipher.
Table ciphers() {
    const std::tuple<const char*, int, int, support::Raised> ways[]{
        {"", CRYPT_OK, CRYPT_OK, {}},
        {"WhenABlockFails", CRYPT_OK, CRYPT_FAIL_TESTVECTOR,
         support::error(KOR_RESULT_CRYPT_ERROR, "Algorithm failed test vectors.")},
        {"WhenTheKeyFails", CRYPT_INVALID_KEYSIZE, CRYPT_OK, kFailed},
    };
    Table table;
    for (const Family family : {kDes, kTdes, kAes}) {
        const auto& [cipher, ecb, cbc] = kModes[family];
        for (const auto& [mode, wiped] : {std::pair(ecb, "8360: key"), std::pair(cbc, "8488: key")}) {
            for (const auto& [way, setup, block, raised] : ways) {
                for (const auto& [kind, run] :
                     {std::pair("Encrypt", mode.encrypt), std::pair("Decrypt", mode.decrypt)}) {
                    const auto prepare = [family, at = setup, then = block, of = cipher, go = run]() -> Row::Call {
                        const auto failing = std::make_shared<FailingCipher>(of, at, then);
                        const auto work = std::make_shared<Work>(family);
                        return [=] {
                            go(work->key.get(), work->blocks, work->blocks, sizeof work->blocks, nullptr);
                            static_cast<void>(failing);
                        };
                    };
                    table.push_back(
                        row(mode.name + std::string(kind) + way, {scheduled(family)}, prepare, {wiped}, raised));
                }
            }
        }
    }
    const auto deleteAes = []() -> Row::Call {
        const auto work = std::make_shared<Work>(kAes);
        return [=] { crypt_aes_cipher_delete(&work->key.aes); };
    };
    table.push_back(row("AesCipherDeleted", {key()}, deleteAes, {"36: key"}));
    return table;
}

INSTANTIATE_TEST_SUITE_P(Ciphers, Secrets, testing::ValuesIn(ciphers()), name_of);

}  // namespace
