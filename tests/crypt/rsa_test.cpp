// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/crypt/rsa.h"

#include <algorithm>
#include <cstring>
#include <tuple>

#include "quorvel/crypt/init.h"
#include "tests/core/owned.h"
#include "tests/crypt/randomness.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/raised.h"
#include "tests/support/wire.h"

using namespace support::literals;

namespace {

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
const std::string kShortRaised =
    "38FA753831606C7EE9EF1DA717AC697BD92F6548F9AAE2D53EA3750A778919EDE4E522092A0990FA02F48FC0226965D0D1D1BA375508F56033"
    "9EF136F54B8CF4C35DE9A0535B171AA33A211FAC83A21F205508C5ACC37378EA8B5E3C659F1D2888AEB8833FC2EBF549D012B498CA2942C32D"
    "E857AB4DD7832E740422FCF53681"_hex;

const uint8_t* bytes(const std::string& text) { return reinterpret_cast<const uint8_t*>(text.data()); }

CryptRsaKey* load(const std::string& N, const std::string& e, const std::string& d) {
    return crypt_rsa_key_load(bytes(N), N.size(), bytes(e), e.size(), bytes(d), d.size());
}

struct Private : Owned<CryptRsaKey, crypt_rsa_key_delete> {
    explicit Private(const std::string& N = kN, const std::string& e = kE) : Owned(load(N, e, kD)) {}
    [[nodiscard]] const CryptRsaKey* get() const { return object; }
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
template <typename Key, typename Function>
std::string run(Function function, const Key* key, const std::string& in) {
    uint8_t out[256];
    const size_t length = function(key, bytes(in), in.size(), out, sizeof out);
    return {reinterpret_cast<char*>(out), length};
}

TEST(Rsa, RawExponentiationKeepsLeadingZeros) {
    const Private key;
    const CryptRsaPublicKey publicKey = public_key();
    EXPECT_EQ(run(crypt_rsa_private_exp, key.get(), kShortRaised), kShort);
    EXPECT_EQ(run(crypt_rsa_public_exp, &publicKey, kShort), kShortRaised);
    EXPECT_EQ(run(crypt_rsa_public_exp, &publicKey, kShort.substr(2)), kShortRaised);
    const std::string one = std::string(127, '\0') + '\x01';
    EXPECT_EQ(run(crypt_rsa_private_exp, key.get(), "\x01"), one);
    EXPECT_EQ(run(crypt_rsa_public_exp, &publicKey, "\x01"), one);
    std::string inPlace = kShortRaised;
    auto* place = reinterpret_cast<uint8_t*>(inPlace.data());
    EXPECT_EQ(crypt_rsa_private_exp(key, place, 128, place, 128), 128U);
    EXPECT_EQ(inPlace, kShort);
}

TEST(Rsa, OaepVectorBothWays) {
    const Private key;
    const CryptRsaPublicKey publicKey = public_key();
    EXPECT_EQ(run(crypt_rsa_decrypt, key.get(), kOaep), kMessage);
    for (const std::string& message : {std::string(), std::string(86, '\0')}) {
        EXPECT_EQ(run(crypt_rsa_decrypt, key.get(), run(crypt_rsa_encrypt, &publicKey, message)), message);
    }
    const support::Randomness seed([](std::span<uint8_t> out) {
        return static_cast<ssize_t>(
            "18B776EA21069D69776A33E96BAD48E1DDA0A5EF"_hex.copy(reinterpret_cast<char*>(out.data()), out.size()));
    });
    EXPECT_EQ(run(crypt_rsa_encrypt, &publicKey, kMessage), kOaep);
    EXPECT_EQ(support::Randomness::calls(), 1U);
}

TEST(Rsa, FaultsOfLoadingInTheirOrder) {
    const auto expect = [](const char* detail, const uint8_t* d, size_t szd, const uint8_t* N, size_t szN,
                           const uint8_t* e, size_t sze) {
        EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, detail, crypt_rsa_key_load(N, szN, e, sze, d, szd));
    };
    const uint8_t* byte = bytes(kN);
    expect("'szd' is zero", byte, 0, nullptr, 0, nullptr, 0);
    expect("'N' is NULL", byte, 128, nullptr, 0, nullptr, 0);
    expect("'szN' is zero", byte, 128, byte, 0, nullptr, 0);
    expect("'e' is NULL", byte, 128, byte, 127, nullptr, 0);
    expect("'sze' is zero", byte, 128, byte, 127, byte, 0);
    expect("Invalid key size: 127", byte, 128, byte, 127, byte, 3);
    expect("Invalid key size: 257", byte, 128, byte, 257, byte, 3);
    for (const int32_t size : {-128, 0, 64, 127, 129, 512}) {
        EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid key size: " + std::to_string(size),
                      crypt_rsa_key_new(size, 65537));
    }
}

template <typename Key, typename Function>
void expect_null_faults(Function function, const Key* key) {
    uint8_t block[128]{};
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'in' is NULL", function(key, nullptr, 0, nullptr, 0));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", function(key, block, 128, nullptr, 0));
}

TEST(Rsa, FaultsOfTheOperationsInTheirOrder) {
    const Private key;
    const CryptRsaPublicKey publicKey = public_key();
    for (const auto function : {crypt_rsa_private_exp, crypt_rsa_decrypt}) { expect_null_faults(function, key.get()); }
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
    expect(crypt_rsa_private_exp, key.get(), above, 128, 128, "Invalid sized parameter.");
    expect(crypt_rsa_private_exp, key.get(), kShortRaised, 128, 127, "Buffer overflow.");
    expect(crypt_rsa_public_exp, &publicKey, above, 128, 128, "Invalid sized parameter.");
    expect(crypt_rsa_public_exp, &publicKey, kShort, 128, 127, "Buffer overflow.");
    expect(crypt_rsa_encrypt, &publicKey, kShort, 1, 127, "Buffer overflow.");
    expect(crypt_rsa_encrypt, &publicKey, kShort, 87, 128, "Invalid sized parameter.");
    expect(crypt_rsa_decrypt, key.get(), damaged, 128, 128, "Invalid OAEP packet");
    expect(crypt_rsa_decrypt, key.get(), kOaep, 127, 128, "Invalid OAEP packet");
    expect(crypt_rsa_decrypt, key.get(), kOaep, 128, kMessage.size() - 1, "Invalid OAEP packet");
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
    for (const auto make : {+[] { return crypt_rsa_key_new(128, 3); }, +[] { return load(kN, kE, kD); }}) {
        const support::FailingMalloc failing(1);
        EXPECT_RAISES(KOR_RESULT_MALLOC_ERROR, "", make());
        EXPECT_TRUE(failing.failed());
    }
    const CryptRsaPublicKey publicKey = public_key();
    for (const auto run : {crypt_rsa_public_exp, crypt_rsa_encrypt}) {
        const support::FailingMalloc failing(1);
        uint8_t out[128];
        EXPECT_RAISES(KOR_RESULT_MALLOC_ERROR, "", run(&publicKey, bytes(kE), 1, out, sizeof out));
        EXPECT_TRUE(failing.failed());
    }
}

}  // namespace
