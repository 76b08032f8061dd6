// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/crypt/rsa.h"

#include <cerrno>
#include <cstring>
#include <tuple>

#include "crypt/prime.h"
#include "crypt/registry.h"
#include "crypt/rsa_key.h"
#include "quorvel/crypt/init.h"
#include "tests/core/owned.h"
#include "tests/core/temp_dir.h"
#include "tests/crypt/randomness.h"
#include "tests/support/big.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/raised.h"
#include "tests/support/wire.h"

using namespace support::literals;
using support::Big;
using support::Randomness;
using support::Sequence;

namespace {

using Key = Owned<CryptRsaKey, crypt_rsa_key_delete>;

// The first key, message and cryptogram of the vectors published with PKCS #1 v2.1.
const std::string kN =
    "A8B3B284AF8EB50B387034A860F146C4919F318763CD6C5598C8AE4811A1E0ABC4C7E0B082D693A5E7FCED675CF4668512772C0CBC64A742C6"
    "C630F533C8CC72F62AE833C40BF25842E984BB78BDBF97C0107D55BDB662F5C4E0FAB9845CB5148EF7392DD3AAFF93AE1E6B667BB3D4247616"
    "D4F5BA10D4CFD226DE88D39F16FB"_hex;
const std::string kE = "010001"_hex;
const std::string kD =
    "53339CFDB79FC8466A655C7316ACA85C55FD8F6DD898FDAF119517EF4F52E8FD8E258DF93FEE180FA0E4AB29693CD83B152A553D4AC4D1812B"
    "8B9FA5AF0E7F55FE7304DF41570926F3311F15C4D65A732C483116EE3D3D2D0AF3549AD9BF7CBFB78AD884F84D5BEB04724DC7369B31DEF37D"
    "0CF539E9CFCDD3DE653729EAD5D1"_hex;
const std::string kMessage = "6628194E12073DB03BA94CDA9EF9532397D50DBA79B987004AFEFE34"_hex;
const std::string kOaep =
    "354FE67B4A126D5D35FE36C777791A3F7BA13DEF484E2D3908AFF722FAD468FB21696DE95D0BE911C2D3174F8AFCC201035F7B6D8E69402DE5"
    "451618C21A535FA9D7BFC5B8DD9FC243F8CF927DB31322D6E881EAA91A996170E657A05A266426D98C88003F8477C1227094A0D9FA1E8C4024"
    "309CE1ECCCB5210035D47AC72E8A"_hex;

// A number that begins with two zero bytes, and what the public exponent makes of it.
const std::string kShort = "000002"_hex + std::string(125, '\xAB');
const std::string kShortRaised = Big(kShort).to_the(Big(kE), Big(kN)).bytes(128);

const uint8_t* bytes(const std::string& text) { return reinterpret_cast<const uint8_t*>(text.data()); }

CryptRsaKey* load(const std::string& N, const std::string& e, const std::string& d) {
    return crypt_rsa_key_load(bytes(N), N.size(), bytes(e), e.size(), bytes(d), d.size());
}

struct Private : Key {
    explicit Private(const std::string& N = kN, const std::string& e = kE) : Key(load(N, e, kD)) {}
};

CryptRsaPublicKey public_key(const std::string& N = kN, const std::string& e = kE) {
    CryptRsaPublicKey key{};
    key.modulusSize = static_cast<uint32_t>(N.size());
    key.exponentSize = static_cast<uint32_t>(e.size());
    std::memcpy(key.modulus, N.data(), std::min(N.size(), sizeof key.modulus));
    std::memcpy(key.exponent, e.data(), std::min(e.size(), sizeof key.exponent));
    return key;
}

// One of the four operations on a text.
template <typename Record>
std::string run(size_t (*function)(const Record*, const uint8_t*, size_t, uint8_t*, size_t),
                const std::type_identity_t<Record>* key, const std::string& in) {
    uint8_t out[256];
    const size_t length = function(key, bytes(in), in.size(), out, sizeof out);
    return {reinterpret_cast<char*>(out), length};
}

TEST(Rsa, RawExponentiationKeepsLeadingZeros) {
    const Private key;
    const CryptRsaPublicKey publicKey = public_key();
    EXPECT_EQ(run(crypt_rsa_public_exp, &publicKey, kShort), kShortRaised);
    EXPECT_EQ(run(crypt_rsa_public_exp, &publicKey, kShort.substr(2)), kShortRaised);
    EXPECT_EQ(run(crypt_rsa_public_exp, &publicKey, "\x01"), std::string(127, '\0') + '\x01');
    std::string inPlace = kShortRaised;
    auto* place = reinterpret_cast<uint8_t*>(inPlace.data());
    EXPECT_EQ(crypt_rsa_private_exp(key, place, 128, place, 128), 128U);
    EXPECT_EQ(inPlace, kShort);
}

TEST(Rsa, OaepVectorBothWays) {
    const Private key;
    const CryptRsaPublicKey publicKey = public_key();
    EXPECT_EQ(run(crypt_rsa_decrypt, key, kOaep), kMessage);
    for (const std::string& message : {std::string(), std::string(86, '\0')}) {
        EXPECT_EQ(run(crypt_rsa_decrypt, key, run(crypt_rsa_encrypt, &publicKey, message)), message);
    }
    const Randomness seed([](std::span<uint8_t> out) {
        return static_cast<ssize_t>(
            "18B776EA21069D69776A33E96BAD48E1DDA0A5EF"_hex.copy(reinterpret_cast<char*>(out.data()), out.size()));
    });
    EXPECT_EQ(run(crypt_rsa_encrypt, &publicKey, kMessage), kOaep);
    EXPECT_EQ(Randomness::calls(), 1U);
}

TEST(Rsa, FaultsOfLoadingInTheirOrder) {
    const uint8_t* byte = bytes(kN);
    const std::tuple<const char*, size_t, const uint8_t*, size_t, const uint8_t*, size_t> cases[] = {
        {"'szd' is zero", 0, nullptr, 0, nullptr, 0},       {"'N' is NULL", 128, nullptr, 0, nullptr, 0},
        {"'szN' is zero", 128, byte, 0, nullptr, 0},        {"'e' is NULL", 128, byte, 127, nullptr, 0},
        {"'sze' is zero", 128, byte, 127, byte, 0},         {"Invalid key size: 127", 128, byte, 127, byte, 3},
        {"Invalid key size: 257", 128, byte, 257, byte, 3},
    };
    for (const auto& row : cases) {
        const auto loadKey = [&] {
            const auto& [detail, szd, N, szN, e, sze] = row;
            crypt_rsa_key_load(N, szN, e, sze, byte, szd);
        };
        EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, std::get<0>(row), loadKey());
    }
    for (const int32_t size : {-128, 0, 64, 127, 129, 512}) {
        EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid key size: " + std::to_string(size),
                      crypt_rsa_key_new(size, 65537));
    }
}

template <typename Record, typename Function>
void expect_null_faults(Function function, const Record* key) {
    uint8_t block[128]{};
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'in' is NULL", function(key, nullptr, 0, nullptr, 0));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", function(key, block, 128, nullptr, 0));
}

TEST(Rsa, FaultsOfTheOperationsInTheirOrder) {
    const Private key;
    const CryptRsaPublicKey publicKey = public_key();
    for (const auto function : {crypt_rsa_private_exp, crypt_rsa_decrypt}) { expect_null_faults(function, key.object); }
    const std::tuple<uint32_t, uint32_t, KorResult_E, const char*> shapes[] = {
        {0, 0, KOR_RESULT_ILLEGAL_ARGUMENT, "'szN' is zero"},
        {300, 0, KOR_RESULT_ILLEGAL_ARGUMENT, "'sze' is zero"},
        {300, 5, KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid key size: 300"},
        {128, 5, KOR_RESULT_RUNTIME_ERROR, "Unsupported exponent size: 5"},
    };
    for (const auto function : {crypt_rsa_public_exp, crypt_rsa_encrypt}) {
        expect_null_faults(function, &publicKey);
        for (const auto& [modulusSize, exponentSize, code, detail] : shapes) {
            CryptRsaPublicKey odd = publicKey;
            odd.modulusSize = modulusSize;
            odd.exponentSize = exponentSize;
            uint8_t block[128]{};
            EXPECT_RAISES(code, detail, function(&odd, block, 1, block, sizeof block));
        }
    }
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", crypt_rsa_get_public_key(key, nullptr));
}

TEST(Rsa, ShapesOfLoadedKeys) {
    const Private key;
    CryptRsaPublicKey publicKey;
    std::memset(&publicKey, 0xFF, sizeof publicKey);
    ASSERT_EQ(crypt_rsa_get_public_key(key, &publicKey), &publicKey);
    const CryptRsaPublicKey expected = public_key();
    EXPECT_EQ(std::memcmp(&publicKey, &expected, sizeof expected), 0);

    const Private shortModulus('\0' + kN.substr(1));
    const Private longExponent(kN, "0100000001"_hex);
    CryptRsaPublicKey out{};
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "Unsupported key size: 127", crypt_rsa_key_get_size(shortModulus));
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "Unsupported modulus size: 127",
                  crypt_rsa_get_public_key(shortModulus, &out));
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "Unsupported exponent size: 5",
                  crypt_rsa_get_public_key(longExponent, &out));
    EXPECT_EQ(out.modulusSize, 0U);
    for (const Private* odd : {&shortModulus, &longExponent}) {
        const support::ReturningRaises raises;
        EXPECT_EQ(crypt_rsa_get_public_key(*odd, &out), nullptr);
    }

    // A modulus of fewer bytes than its padding must not reach the padding.
    for (const std::string& tail : {"00"_hex, "FB"_hex, "0100"_hex}) {
        const std::string N = std::string(128 - tail.size(), '\0') + tail;
        const CryptRsaPublicKey tinyPublic = public_key(N);
        const Private tiny(N);
        uint8_t block[128]{};
        EXPECT_RAISES(KOR_RESULT_CRYPT_ERROR, "Invalid sized parameter.",
                      crypt_rsa_encrypt(&tinyPublic, block, 1, block, sizeof block));
        EXPECT_RAISES(KOR_RESULT_CRYPT_ERROR, "Invalid sized parameter.",
                      crypt_rsa_decrypt(tiny, block, tail.size(), block, sizeof block));
    }
}

TEST(Rsa, RefusedDataLeavesTheOutputAsItWas) {
    const Private key;
    const CryptRsaPublicKey publicKey = public_key();
    const std::string above(128, '\xFF');
    std::string damaged = kOaep;
    damaged.back() ^= 1;
    const auto expect = [](auto function, const auto* rsa, const std::string& in, size_t inLen, size_t room,
                           const char* detail) {
        std::string out(128, 'Z');
        EXPECT_RAISES(KOR_RESULT_CRYPT_ERROR, detail,
                      function(rsa, bytes(in), inLen, reinterpret_cast<uint8_t*>(out.data()), room));
        EXPECT_EQ(out, std::string(128, 'Z')) << detail;
    };
    expect(crypt_rsa_private_exp, key.object, above, 128, 128, "Invalid sized parameter.");
    expect(crypt_rsa_private_exp, key.object, kShortRaised, 128, 127, "Buffer overflow.");
    expect(crypt_rsa_public_exp, &publicKey, above, 128, 128, "Invalid sized parameter.");
    expect(crypt_rsa_public_exp, &publicKey, kShort, 128, 127, "Buffer overflow.");
    expect(crypt_rsa_encrypt, &publicKey, kShort, 1, 127, "Buffer overflow.");
    expect(crypt_rsa_encrypt, &publicKey, kShort, 87, 128, "Invalid sized parameter.");
    expect(crypt_rsa_decrypt, key.object, damaged, 128, 128, "Invalid OAEP packet");
    expect(crypt_rsa_decrypt, key.object, kOaep, 127, 128, "Invalid OAEP packet");
    expect(crypt_rsa_decrypt, key.object, kOaep, 128, kMessage.size() - 1, "Invalid OAEP packet");
    // A block that begins with 01, and one whose seed makes the mask such that all looks right but the label's hash.
    for (const auto& [place, bits] : {std::pair(0U, 0x01), std::pair(1U, 0x36)}) {
        std::string block = Big(kOaep).to_the(Big(kD), Big(kN)).bytes(128);
        block[place] = static_cast<char>(block[place] ^ bits);
        const std::string wrong = Big(block).to_the(Big(kE), Big(kN)).bytes(128);
        expect(crypt_rsa_decrypt, key.object, wrong, 128, 128, "Invalid OAEP packet");
    }
}

TEST(Rsa, KeysThatCannotBeMadeKeepNoMemory) {
    EXPECT_NO_RAISE(crypt_init());  // so that the frame of the try block is there before the count begins
    for (const uint32_t e : {0U, 1U, 2U, 65536U}) {
        const support::FailingMalloc blocks(0);
        const support::ReturningRaises raises;
        EXPECT_EQ(crypt_rsa_key_new(128, e), nullptr);
        EXPECT_EQ(raises.all(), support::errors(KOR_RESULT_CRYPT_ERROR, {"Invalid argument provided."}));
        EXPECT_EQ(blocks.kept(), 0U);
    }
    const CryptRsaPublicKey publicKey = public_key();
    for (const auto run : {crypt_rsa_public_exp, crypt_rsa_encrypt}) {
        const support::FailingMalloc failing(1);
        uint8_t out[128];
        EXPECT_RAISES(KOR_RESULT_MALLOC_ERROR, "", run(&publicKey, bytes(kE), 1, out, sizeof out));
        EXPECT_TRUE(failing.failed());
    }
}

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
            EXPECT_EQ(run(crypt_rsa_decrypt, key, run(crypt_rsa_encrypt, &publicKey, kMessage)), kMessage);
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
        const Key key(load(N, kE, d));
        const Big modulus(N);
        EXPECT_EQ(run(crypt_rsa_private_exp, key, in),
                  Big(in).to_the(Big(d), modulus).bytes(static_cast<size_t>(modulus.bits() + 7) / 8));
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
        const Key key(load(N, kE, N));
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
    const Big one(1);
    const Big lopsided = p * (q - p.inverse(q));  // nothing modulo p, and as much as there can be modulo q
    for (const Big& message : {Big(0), one, p - one, p, q, lopsided, modulus - one, Big(std::string(99, '<'))}) {
        EXPECT_EQ(Big(run(crypt_rsa_private_exp, key, message.to_the(Big(3), modulus).bytes(128))), message);
    }
    EXPECT_EQ(Big(run(crypt_rsa_private_exp, key, modulus.bytes(128))), Big(0));

    const std::string raised = Big(2).to_the(Big(3), modulus).bytes(128);
    key->dP[0] ^= 2;
    std::string out(128, 'Z');
    EXPECT_RAISES(KOR_RESULT_CRYPT_ERROR, "CRYPT_ERROR",
                  crypt_rsa_private_exp(key, bytes(raised), 128, reinterpret_cast<uint8_t*>(out.data()), 128));
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
            EXPECT_RAISES(KOR_RESULT_CRYPT_ERROR, "Error reading the PRNG.", crypt_rsa_key_new(128, 65537));
            EXPECT_EQ(blocks.kept(), 0U);
            if (failing > 1) { continue; }
            uint8_t out[128]{};
            EXPECT_RAISES(KOR_RESULT_CRYPT_ERROR, "Error reading the PRNG.",
                          crypt_rsa_encrypt(&publicKey, out, 1, out, 128));
            EXPECT_TRUE(std::ranges::all_of(out, [](uint8_t byte) { return byte == 0; }));
        }
    }
}

}  // namespace
