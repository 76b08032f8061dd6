// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>

#include "tests/crypt/block_modes.h"
#include "tests/support/raised.h"
#include "tests/support/wire.h"

using namespace modes;
using namespace support::literals;

namespace {

const uint8_t* bytes(std::string_view text) { return reinterpret_cast<const uint8_t*>(text.data()); }
uint8_t* bytes(std::string& text) { return reinterpret_cast<uint8_t*>(text.data()); }

const std::string kNow = "Now is the time for all ";
const std::string kNist = "6BC1BEE22E409F96E93D7E117393172A AE2D8A571E03AC9C9EB76FAC45AF8E51"_hex;

// FIPS 81, the NIST examples of 3DES and SP 800-38A.
const struct {
    Family family;
    std::string key, plain, ecb, iv, cbc;
} kVectors[]{
    {kDes, "0123456789ABCDEF"_hex, kNow, "3FA40E8A984D48156A271787AB8883F9893D51EC4B563B53"_hex, "1234567890ABCDEF"_hex,
     "E5C7CDDE872BF27C43E934008C389C0F683788499A7C05F6"_hex},
    {kTdes, "0123456789ABCDEF 23456789ABCDEF01 456789ABCDEF0123"_hex, kNist,
     "714772F339841D34267FCC4BD2949CC3EE11C22A576A303876183F99C0B6DE87"_hex, "F69F2445DF4F9B17"_hex,
     "2079C3D53AA763E193B79E2569AB5262516570481F25B50F73C0BDA85C8E0DA7"_hex},
    {kTdes, "0123456789ABCDEF 23456789ABCDEF01"_hex, kNist,
     "06EDE3D82884090AFF322C19F0518486730576972A666E58B6C88CF107340D3D"_hex, "F69F2445DF4F9B17"_hex,
     "7401CE1EAB6D003CAFF84BF47B36CC2154F0238F9FFECD8F6ACF118392B45581"_hex},
    {kAes, "2B7E151628AED2A6ABF7158809CF4F3C"_hex, kNist,
     "3AD77BB40D7A3660A89ECAF32466EF97F5D3D58503B9699DE785895A96FDBAAF"_hex, "000102030405060708090A0B0C0D0E0F"_hex,
     "7649ABAC8119B246CEE98E9B12E9197D5086CB9B507219EE95DB113A917678B2"_hex},
    {kAes, "8E73B0F7DA0E6452C810F32B809079E562F8EAD2522C6B7B"_hex, kNist,
     "BD334F1D6E45F25FF712A214571FA5CC974104846D0AD3AD7734ECB3ECEE4EEF"_hex, "000102030405060708090A0B0C0D0E0F"_hex,
     "4F021DB243BC633D7178183A9FA071E8B4D9ADA9AD7DEDF4E5E738763F69145A"_hex},
    {kAes, "603DEB1015CA71BE2B73AEF0857D77811F352C073B6108D72D9810A30914DFF4"_hex, kNist,
     "F3EED1BDB5D2A03C064B5A7E3DB181F8591CCB10D410ED26DC5BA74A31362870"_hex, "000102030405060708090A0B0C0D0E0F"_hex,
     "F58C4C04D6E5F1BA779EABFB5F7BFBD69CFC4E967EDB808D679F777BC6702C7D"_hex},
};

void expect_both_ways(const Mode& mode, const Key& key, const std::string& plain, const std::string& cryptogram,
                      const uint8_t* iv) {
    for (const bool inPlace : {false, true}) {
        SCOPED_TRACE(mode.name);
        std::string in = plain;
        std::string apart(plain.size(), '\0');
        std::string& out = inPlace ? in : apart;
        mode.encrypt(key.get(), bytes(in), bytes(out), plain.size(), iv);
        EXPECT_EQ(support::to_hex(out), support::to_hex(cryptogram));
        in = cryptogram;
        mode.decrypt(key.get(), bytes(in), bytes(out), plain.size(), iv);
        EXPECT_EQ(support::to_hex(out), support::to_hex(plain));
    }
}

TEST(BlockCiphers, PublishedVectorsBothWaysAndInPlace) {
    for (const auto& vector : kVectors) {
        const Key key(vector.family, vector.key);
        const auto& [cipher, ecb, cbc] = kModes[vector.family];
        const std::string iv = vector.iv;
        expect_both_ways(ecb, key, vector.plain, vector.ecb, nullptr);
        expect_both_ways(cbc, key, vector.plain, vector.cbc, bytes(iv));
        EXPECT_EQ(iv, vector.iv) << "the caller's vector was updated";
        // Without one it is of zeros, which leave the first block as it is.
        const size_t block = vector.iv.size();
        expect_both_ways(cbc, key, vector.plain.substr(0, block), vector.ecb.substr(0, block), nullptr);
    }
}

TEST(BlockCiphers, FaultsInTheirOrder) {
    constexpr const char* kPartialBlock[]{"'len' must be a multiple of 8", "'len' must be a multiple of 8",
                                          "'len' must be a multiple of 16"};
    uint8_t in[32]{};
    uint8_t out[32]{};
    for (const Family family : {kDes, kTdes, kAes}) {
        const Key owned(family, "0123456789ABCDEF"_hex + (family == kDes ? "" : "0123456789ABCDEF"_hex));
        const void* key = owned.get();
        const auto expect = [&](const uint8_t* from, uint8_t* to, size_t len, const char* detail) {
            for (const Mode& mode : {kModes[family].ecb, kModes[family].cbc}) {
                EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, detail, mode.encrypt(key, from, to, len, nullptr));
                EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, detail, mode.decrypt(key, from, to, len, nullptr));
            }
        };
        expect(nullptr, nullptr, 0, "'in' is NULL");
        expect(in, nullptr, 0, "'out' is NULL");
        expect(in, out, 0, "'len' is zero");
        expect(in, out, 20, kPartialBlock[family]);
    }
    EXPECT_TRUE(std::ranges::all_of(out, [](uint8_t byte) { return byte == 0; }));
}

TEST(BlockCiphers, SizesOfKeys) {
    for (const uint32_t size : {0U, 8U, 15U, 17U, 20U, 25U, 32U, 0xFFFFFFF8U}) {
        const Crypt3DesKey key{.key = {}, .keySize = size};
        EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid key size: " + std::to_string(size),
                      crypt_3des_ecb_encrypt(&key, nullptr, nullptr, 0));
    }
    const uint8_t key[16]{};
    for (const size_t size : {0UL, 8UL, 15UL, 20UL, 33UL, 40UL}) {
        EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Unsupported key size: " + std::to_string(size),
                      crypt_aes_cipher_new(key, size));
    }
}

}  // namespace
