// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "crypt/rsa_key.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include "crypt/prime.h"
#include "crypt/registry.h"
#include "tests/core/owned.h"
#include "tests/core/temp_dir.h"
#include "tests/crypt/randomness.h"
#include "tests/support/big.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/raised.h"

using support::Big;
using support::Randomness;
using support::Sequence;

namespace {

using Key = Owned<CryptRsaKey, crypt_rsa_key_delete>;

constexpr const char* kNoRandomness = "Error reading the PRNG.";

const uint8_t* bytes(const std::string& text) { return reinterpret_cast<const uint8_t*>(text.data()); }

Big number(const kor::crypt::Half& half, const CryptRsaKey& key) { return {half.data(), key.modulusSize / 2}; }

void expect_sound(const CryptRsaKey& key, int32_t size, const Big& e) {
    const Big one(1);
    const Big p = number(key.p, key);
    const Big q = number(key.q, key);
    const Big modulus(key.modulus.data(), sizeof key.modulus);
    EXPECT_EQ(modulus.bits(), 8 * size);
    EXPECT_EQ(p * q, modulus);
    for (const Big& prime : {p, q}) {
        EXPECT_TRUE(prime.prime());
        EXPECT_EQ(prime.bits(), 4 * size);
        EXPECT_TRUE(prime.bit(4 * size - 2));
    }
    EXPECT_GT((p < q ? q - p : p - q).bits(), 4 * size - 100);
    EXPECT_EQ(number(key.dP, key) * e % (p - one), one);
    EXPECT_EQ(number(key.dQ, key) * e % (q - one), one);
    EXPECT_EQ(number(key.qP, key) * q % p, one);
    for (const Big& member : {number(key.dP, key), number(key.qP, key)}) { EXPECT_LT(member, p); }
}

TEST(RsaKey, GeneratedNumbersAreThoseOfAnRsaKey) {
    constexpr uint32_t kExponents[]{3, 5, 15, 65537, 0x80000001, 0xFFFFFFFF};
    for (const int32_t size : {128, 256}) {
        for (const uint32_t e : kExponents) {
            const Key key(crypt_rsa_key_new(size, e));
            expect_sound(*key.object, size, Big(e));
            EXPECT_EQ(crypt_rsa_key_get_size(key), size);
            CryptRsaPublicKey publicKey;
            ASSERT_EQ(crypt_rsa_get_public_key(key, &publicKey), &publicKey);
            EXPECT_EQ(publicKey.modulusSize, static_cast<uint32_t>(size));
            EXPECT_EQ(Big(std::string(publicKey.exponent, publicKey.exponent + publicKey.exponentSize)), Big(e));
            EXPECT_NE(publicKey.exponent[0], 0);
            uint8_t out[256] = "message";
            size_t length = crypt_rsa_encrypt(&publicKey, out, 7, out, sizeof out);
            length = crypt_rsa_decrypt(key, out, length, out, sizeof out);
            EXPECT_EQ(std::string(out, out + length), "message");
            if (size == 256 && e > 3) { break; }
        }
    }
}

TEST(RsaKey, CompositesAreNotTakenForPrimes) {
    const auto passes = [](const Big& candidate) {
        kor::crypt::Number limbs{};
        const std::string content = candidate.little_endian(sizeof limbs);
        std::memcpy(limbs.data(), content.data(), content.size());
        kor::crypt::PrimeSearch search;
        bool prime = false;
        const size_t size = kor::crypt::significant(limbs.data(), limbs.size());
        EXPECT_EQ(search.test(prime, limbs.data(), size), CRYPT_OK);
        return prime;
    };
    // Numbers that pass weaker tests: a multiple of three primes of which each one less divides one less of it, and the
    // product of p and 2p - 1, which passes a round as often as any composite does.
    EXPECT_FALSE(passes(Big::of_digits("1E4463805351FB617A7E6473D2E8FC8563A7F4CB55ED06A7B21")));
    EXPECT_FALSE(passes(Big::of_digits("2259E1559DC0576E200F11F4B6D7AA8537538AF6788A9F69414CD190A5475")));
    EXPECT_TRUE(passes(Big::of_digits("CF701592FAFF1B411")));
    const Randomness counted{Sequence()};
    EXPECT_TRUE(passes(Big::of_digits("1093CDA6D129A99074DF7DD03E6FA1D")));
    EXPECT_GE(Randomness::calls(), 40U) << "each round halves the doubt twice, and it must be below 2 ^ -80";
    // Ends of the search: 2^521 - 1 is a prime, and one less than it has one factor 2; 15 * 2^27 + 1 has many.
    EXPECT_TRUE(passes(Big::of_digits("1FF" + std::string(128, 'F'))));
    EXPECT_TRUE(passes(Big(2013265921)));
    EXPECT_FALSE(passes(Big::of_digits("1FF" + std::string(127, 'F') + "D")));
}

// A second prime that is the first one makes a modulus that its root takes apart.
TEST(RsaKey, PrimesThatLieTooCloseAreDrawnAgain) {
    Sequence rest;
    const Randomness same([&](std::span<uint8_t> out) -> ssize_t {
        if (Randomness::calls() > 400) { return rest(out); }
        std::ranges::fill(out, uint8_t{0x5A});
        return static_cast<ssize_t>(out.size());
    });
    const Key key(crypt_rsa_key_new(128, 65537));
    EXPECT_GT(Randomness::calls(), 400U);
    expect_sound(*key.object, 128, Big(65537));

    using kor::crypt::far_apart;
    using kor::crypt::Half;
    constexpr size_t kSize = 512 / kor::crypt::kLimbBits;
    const auto expect = [](const Big& distance, bool far) {
        const Big low = Big(std::string(64, '\xC1'));
        Half p{};
        Half q{};
        std::memcpy(p.data(), low.little_endian(64).data(), 64);
        std::memcpy(q.data(), (low + distance).little_endian(64).data(), 64);
        EXPECT_EQ(far_apart(p.data(), q.data(), kSize), far) << distance.bits();
        EXPECT_EQ(far_apart(q.data(), p.data(), kSize), far) << distance.bits();
    };
    const Big limit(std::string("\x10", 1) + std::string(51, '\0'));  // 2 ^ (512 - 100)
    expect(Big(0), false);
    expect(limit - Big(2), false);
    expect(limit, false);
    expect(limit + Big(2), true);
    expect(limit * Big(16), true);
}

// Whatever can be loaded as a key, against the other library.
TEST(RsaKey, PrivateExponentiationOfLoadedNumbers) {
    Sequence sequence;
    const auto draw = [&](size_t size) {
        std::string out(size, '\0');
        sequence({reinterpret_cast<uint8_t*>(out.data()), size});
        return out;
    };
    const auto expect = [](const std::string& N, const std::string& d, const std::string& in) {
        const Key key(crypt_rsa_key_load(bytes(N), N.size(), bytes(d), 1, bytes(d), d.size()));
        const Big modulus(N);
        uint8_t out[256];
        size_t length = 0;
        EXPECT_NO_RAISE(length = crypt_rsa_private_exp(key, bytes(in), in.size(), out, sizeof out));
        ASSERT_EQ(length, static_cast<size_t>(modulus.bits() + 7) / 8);
        EXPECT_EQ(Big(std::string(out, out + length)), Big(in).to_the(Big(d), modulus)) << modulus.bits();
    };
    for (const size_t size : {size_t{128}, size_t{256}}) {
        for (size_t zeros = 0; zeros < size; zeros += 1 + zeros / 2) {
            std::string N = std::string(zeros, '\0') + draw(size - zeros);
            N.back() |= 3;
            const Big modulus(N);
            const std::string d = draw(1 + (size - zeros) % 300);
            expect(N, d, (Big(draw(size)) % modulus).bytes(size));
            expect(N, d, (modulus - Big(1)).bytes(size));
            expect(N, d, N);
            expect(N, d, std::string(300, '\0') + "\x02");
        }
    }
    expect(std::string(128, '\xFF'), std::string(300, '\xFF'), std::string(128, '\xFE'));
    expect(std::string(128, '\xFF'), std::string(8, '\0'), "\x07");
    // What is no modulus.
    for (const char low : {'\0', '\1', '\6'}) {
        const std::string N = std::string(127, '\0') + low;
        const Key key(crypt_rsa_key_load(bytes(N), N.size(), bytes(N), 1, bytes(N), N.size()));
        uint8_t out[128];
        EXPECT_RAISES(KOR_RESULT_CRYPT_ERROR, "Invalid argument provided.",
                      crypt_rsa_private_exp(key, out, 0, out, sizeof out));
        CryptRsaPublicKey publicKey{128, 1, {}, {3}};
        publicKey.modulus[127] = bytes(N)[127];
        EXPECT_RAISES(KOR_RESULT_CRYPT_ERROR, "Invalid argument provided.",
                      crypt_rsa_public_exp(&publicKey, out, 0, out, sizeof out));
    }
}

// By primes it is quicker, and one result that is wrong modulo one of them gives the other away.
TEST(RsaKey, AWrongResultDoesNotLeave) {
    // A key of which the second prime is the greater one.
    unsigned seed = 0;
    std::unique_ptr<Key> made;
    do {
        const Randomness randomness{Sequence(++seed)};
        made = std::make_unique<Key>(crypt_rsa_key_new(128, 3));
    } while (number(made->object->q, *made->object) < number(made->object->p, *made->object));
    CryptRsaKey* key = made->object;
    const Big modulus(key->modulus.data(), 128);
    const Big p = number(key->p, *key);
    const Big q = number(key->q, *key);
    std::string out(128, '\0');
    auto* place = reinterpret_cast<uint8_t*>(out.data());
    const Big one(1);
    const Big lopsided = p * (q - p.inverse(q));  // nothing modulo p, and as much as there can be modulo q
    for (const Big& message : {Big(0), one, p - one, p, q, lopsided, modulus - one, Big(std::string(99, '<'))}) {
        const std::string raised = message.to_the(Big(3), modulus).bytes(128);
        EXPECT_NO_RAISE(crypt_rsa_private_exp(key, bytes(raised), 128, place, 128));
        EXPECT_EQ(Big(out), message);
    }
    const std::string same = modulus.bytes(128);
    EXPECT_NO_RAISE(crypt_rsa_private_exp(key, bytes(same), 128, place, 128));
    EXPECT_EQ(Big(out), Big(0));

    const std::string raised = Big(2).to_the(Big(3), modulus).bytes(128);
    key->dP[0] ^= 2;
    out.assign(128, 'Z');
    EXPECT_RAISES(KOR_RESULT_CRYPT_ERROR, "CRYPT_ERROR", crypt_rsa_private_exp(key, bytes(raised), 128, place, 128));
    EXPECT_EQ(out, std::string(128, 'Z'));
}

std::string modulus_by(const Randomness::Answer& answer) {
    const Randomness randomness(answer);
    const Key key(crypt_rsa_key_new(128, 65537));
    return {reinterpret_cast<const char*>(key.object->modulus.data()), 128};
}

// The same bytes make the same key however they come, and where no file can be opened: nothing else has a say in it.
TEST(RsaKey, IsMadeOfNothingButTheBytesOfTheKernel) {
    const std::string modulus = modulus_by(Sequence());
    EXPECT_NE(modulus, modulus_by(Sequence(2)));

    Sequence pieces;
    EXPECT_EQ(modulus, modulus_by([&](std::span<uint8_t> out) -> ssize_t {
                  if (Randomness::calls() % 3 == 0) { return errno = EINTR, -1; }
                  return pieces(out.first(std::min<size_t>(out.size(), 1 + Randomness::calls() % 50)));
              }));

    const NoDescriptors none;
    EXPECT_EQ(modulus, modulus_by(Sequence()));
}

TEST(RsaKey, WithoutRandomnessNothingIsMadeNorKept) {
    const Key key(crypt_rsa_key_new(128, 65537));
    CryptRsaPublicKey publicKey;
    crypt_rsa_get_public_key(key, &publicKey);
    // From the first draw on, during the search, and late: the draws of the last rounds are the last ones.
    Sequence counted;
    modulus_by(counted);
    const size_t all = Randomness::calls();
    for (const size_t failing : {size_t{1}, size_t{2}, all / 2, all}) {
        for (const int error : {0, EPERM}) {
            Sequence sequence;
            const Randomness randomness([&](std::span<uint8_t> out) -> ssize_t {
                if (Randomness::calls() < failing) { return sequence(out); }
                return errno = error, error == 0 ? 0 : -1;
            });
            const support::FailingMalloc blocks(0);
            EXPECT_RAISES(KOR_RESULT_CRYPT_ERROR, kNoRandomness, crypt_rsa_key_new(128, 65537));
            EXPECT_EQ(blocks.kept(), 0U);
            if (failing > 1) { continue; }
            uint8_t out[128]{};
            EXPECT_RAISES(KOR_RESULT_CRYPT_ERROR, kNoRandomness, crypt_rsa_encrypt(&publicKey, out, 1, out, 128));
            EXPECT_TRUE(std::ranges::all_of(out, [](uint8_t byte) { return byte == 0; }));
        }
    }
}

}  // namespace
