// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/crypt/rsa.h"

#include "crypt/rsa_key.h"
#include "tests/crypt/randomness.h"
#include "tests/secrets/table.h"

using namespace secrets;

namespace {

using support::Randomness;
using support::Sequence;

constexpr std::string_view kMessage = "the message under the padding";
static_assert(kMessage.size() == 29);

// A key and what is done with it.
struct Rsa {
    CryptRsaKey* key = nullptr;
    CryptRsaPublicKey publicKey{};
    uint8_t cryptogram[128]{};
    uint8_t out[128]{};

    ~Rsa() { crypt_rsa_key_delete(&key); }
};

using Step = void (*)(Rsa& rsa);

void make(Rsa& rsa) { rsa.key = crypt_rsa_key_new(128, 65537); }
void load(Rsa& rsa) {
    const std::string modulus(128, '\x55');
    const auto* bytes = reinterpret_cast<const uint8_t*>(modulus.data());
    rsa.key = crypt_rsa_key_load(bytes, 128, bytes, 1, reinterpret_cast<const uint8_t*>(kMessage.data()), 29);
}
void release(Rsa& rsa) { crypt_rsa_key_delete(&rsa.key); }

void encrypt(Rsa& rsa) {
    crypt_rsa_get_public_key(rsa.key, &rsa.publicKey);
    crypt_rsa_encrypt(&rsa.publicKey, reinterpret_cast<const uint8_t*>(kMessage.data()), 29, rsa.cryptogram, 128);
}
void encipher(Rsa& rsa) {
    crypt_rsa_get_public_key(rsa.key, &rsa.publicKey);
    crypt_rsa_public_exp(&rsa.publicKey, reinterpret_cast<const uint8_t*>(kMessage.data()), 29, rsa.cryptogram, 128);
}
void decrypt(Rsa& rsa) { crypt_rsa_decrypt(rsa.key, rsa.cryptogram, 128, rsa.out, sizeof rsa.out); }
void decipher(Rsa& rsa) { crypt_rsa_private_exp(rsa.key, rsa.cryptogram, 128, rsa.out, sizeof rsa.out); }

// `call` on a new key on which `before` was done, with this many draws for either.
std::function<Row::Call()> rsa(Step before, Step call, size_t draws = SIZE_MAX) {
    return [=] {
        const auto all = std::make_shared<Rsa>();
        {
            const Randomness first{Sequence()};
            before(*all);
        }
        const auto randomness = std::make_shared<Randomness>(Sequence(1, draws));
        return [=] { call(*all), static_cast<void>(randomness); };
    };
}

void nothing(Rsa&) {}
void encrypt_for_new_key(Rsa& all) {
    make(all);
    const Randomness again{Sequence()};
    encrypt(all);
}
void encipher_for_new_key(Rsa& all) { make(all), encipher(all); }

const support::Raised kNothingDrawn = support::error(KOR_RESULT_CRYPT_ERROR, "Error reading the PRNG.");

// Not in the table of the parameters, because making a key takes time whichever row runs.
TEST(Secrets, OfRsaAreWiped) {
    Rsa all;
    size_t draws = 0;
    {
        const Randomness randomness{Sequence()};
        make(all);
        draws = Randomness::calls();
    }
    {
        const Randomness randomness{Sequence()};
        encrypt(all);
    }
    decipher(all);
    const Secret padded = of_bytes("padded", {reinterpret_cast<const char*>(all.out), sizeof all.out});
    Secret numbers{"numbers", {}};
    for (const auto* number : {&all.key->p, &all.key->q, &all.key->dP, &all.key->dQ, &all.key->qP}) {
        numbers.forms.emplace_back(reinterpret_cast<const char*>(number), 64);
    }
    const Secret message = of_bytes("message", kMessage);
    std::string drawn(20, '\0');
    Sequence()({reinterpret_cast<uint8_t*>(drawn.data()), drawn.size()});
    const Secret seed = of_bytes("seed", drawn);

    // 11664 is the stack under the arithmetic, 936 a key that was made, 256 a work area.
    const Row rows[]{
        row("KeyMade", {numbers}, rsa(nothing, make), {"11664: numbers"}),
        row("KeyNotMade", {numbers}, rsa(nothing, make, draws - 1), {"11664: numbers", "936: numbers"}, kNothingDrawn),
        row("KeyDeleted", {numbers}, rsa(make, release), {"936: numbers"}),
        row("LoadedKeyDeleted", {message}, rsa(load, release), {"968: message"}),
        row("Enciphered", {message}, rsa(make, encipher), {"11664: message"}),
        row("Deciphered", {message}, rsa(encipher_for_new_key, decipher), {"11664: message", "256: message"}),
        row("Encrypted", {message, seed, padded}, rsa(make, encrypt), {"11664: padded", "2048: padded"}),
        row("NotEncrypted", {message}, rsa(make, encrypt, 0), {"256: message"}, kNothingDrawn),
        row("Decrypted", {message, seed, padded}, rsa(encrypt_for_new_key, decrypt),
            {"11664: padded", "2048: seed", "256: message"}),
        row("NotDecrypted", {message}, rsa(encipher_for_new_key, decrypt), {"11664: message"},
            support::error(KOR_RESULT_CRYPT_ERROR, "Invalid OAEP packet")),
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        expect(row);
    }
}

}  // namespace
