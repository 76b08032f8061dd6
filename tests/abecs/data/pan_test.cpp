// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/pan.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <tuple>

#include "tests/support/raised.h"
#include "tests/support/wire.h"

using namespace support;

namespace {

AbecsWkPan working_key(int32_t type) {
    AbecsWkPan key{.type = static_cast<AbecsWkPanType_E>(type), .key = {}};
    const std::string bytes = "0123456789ABCDEF FEDCBA9876543210"_hex;
    std::copy(bytes.begin(), bytes.end(), key.key);
    return key;
}

// A text that ends with its allocation, so that the sanitizer sees every character read past it.
using Exact = std::unique_ptr<char, decltype(&std::free)>;
Exact exact(const char* text) { return {strdup(text), std::free}; }

// All numbers here are published test numbers, or such a number with zeros in front. The enciphered and deciphered
// forms come from a second implementation of the ciphers.
TEST(PanEncrypt, DeciphersTheLastSixteenDigits) {
    const std::tuple<const char*, const char*, const char*> cases[]{
        {"4111111111111111", "BEC8C7B720B1ED83", "64B02AE35D82E5CE"},
        {"0004111111111111111", "000BEC8C7B720B1ED83", "00064B02AE35D82E5CE"},
        {"378282246310005", "FE0D32BE59E5B29C", "351A2A05CB1EEA69"},
        {"4222222222222", "8AD95F89C9C0743D", "4EA6E3B067950B33"},
    };
    for (const int32_t type : {0, 1, 2}) {
        const AbecsWkPan key = working_key(type);
        for (const auto& [pan, des, tdes] : cases) {
            EXPECT_STREQ(abecs_pan_encrypt(exact(pan).get(), &key), type == 0 ? des : tdes);
        }
        for (const char* tooShortOrNoNumber : {"422222222222", "", "41111111111111A1"}) {
            EXPECT_STREQ(abecs_pan_encrypt(exact(tooShortOrNoNumber).get(), &key), tooShortOrNoNumber);
        }
    }
}

TEST(PanDecryptTrack, DeciphersWhatStandsBeforeTheSeparator) {
    const std::tuple<const char*, const char*, const char*> cases[]{
        {"sixteen digits", "F0157C5DA1787BED=2512201", "4111111111111111=2512201"},
        {"the rest is kept, separators too", "F0157C5DA1787BED^CARD/TEST=^2512", "4111111111111111^CARD/TEST=^2512"},
        {"lower case", "f0157c5da1787bed=2512", "4111111111111111=2512"},
        {"digits in front", "000F0157C5DA1787BED=2512", "0004111111111111111=2512"},
        {"one character of filling", "3EBC0FCC21D3E027=2512", "378282246310005=2512"},
        {"three", "C5EAC4F69B8381EB=2512", "4222222222222=2512"},
        {"filling ends the number although digits follow", "69CECE87291DBD8E=2512", "4222222222222=2512"},
        {"a blank, then filling", "BE6439E543E311E0=2512", "4222222222222 1=2512"},
        {"an enciphered blank", "82EBF16D3FB6C5E6=2512", "411111 111111111=2512"},
        {"a blank where filling could stand", "C78F8B49D961553E=2512", "4222222222222 12=2512"},
        {"F elsewhere stays", "08557B4443400BD1=2512", "F411111111111111=2512"},
        {"also just before where filling can stand", "B871D0E905BFF1F3=2512", "411111111111F111=2512"},
        {"deciphers to no number", "4C0A11BF17AA5804=2512", "4C0A11BF17AA5804=2512"},
        {"separator at 15", "0157C5DA1787BED=2512", "0157C5DA1787BED=2512"},
        {"a sentinel in front", "%BF0157C5DA1787BED^CARD", "%BF0157C5DA1787BED^CARD"},
        {"nothing", "", ""},
    };
    const AbecsWkPan key = working_key(0);
    for (const auto& [what, track, clear] : cases) {
        EXPECT_STREQ(abecs_pan_decrypt_track(exact(track).get(), &key), clear) << what;
    }
    for (const int32_t type : {1, 2}) {
        const AbecsWkPan tdes = working_key(type);
        EXPECT_STREQ(abecs_pan_decrypt_track("E7BD6636680F28CA=2512", &tdes), "378282246310005=2512");
    }
}

TEST(PanIdentify, TakesTheDigitsUpToTheSeparator) {
    const std::pair<const char*, const char*> cases[]{
        {"%B4111111111111111^CARD/TEST^2512", "4111111111111111"},
        {"%B3782 822463 10005^CARD", "378282246310005"},
        {"% B4111111111111111^", "B4111111111111111"},
        {"4111111111111111", "4111111111111111"},
        {"=4111111111111111=25", "4111111111111111"},
        {"%BCARD^TEST", "%BCARD"},
        {"   ", ""},
        {"", ""},
    };
    for (const auto& [track, pan] : cases) { EXPECT_STREQ(abecs_pan_identify(exact(track).get()), pan); }
}

TEST(Pan, LengthsCutTheTextAndReadNothingPastIt) {
    const AbecsWkPan key = working_key(0);
    const std::tuple<decltype(&abecs_pan_encrypt2), const char*, size_t, const char*> cases[]{
        {abecs_pan_encrypt2, "4222222222222", 16, "8AD95F89C9C0743D"},
        {abecs_pan_encrypt2, "41111111111111119", 16, "BEC8C7B720B1ED83"},
        {abecs_pan_encrypt2, "4111111111111111", 12, "411111111111"},
        {abecs_pan_decrypt_track2, "F0157C5DA1787BED", 99, "4111111111111111"},
        {abecs_pan_decrypt_track2, "F0157C5DA1787BED=2512", 17, "4111111111111111="},
        {abecs_pan_decrypt_track2, "F0157C5DA1787BED=2512", 15, "F0157C5DA1787BE"},
    };
    for (const auto& [transform, text, length, transformed] : cases) {
        EXPECT_STREQ(transform(exact(text).get(), length, &key), transformed);
    }
    EXPECT_STREQ(abecs_pan_identify2(exact("4111111111111111").get(), 255), "4111111111111111");
    EXPECT_STREQ(abecs_pan_identify2("%B4111111111111111", 6), "4111");
    EXPECT_STREQ(abecs_pan_identify2(exact("").get(), 1), "");
}

TEST(Pan, LongestTextsAndTheFirstTooLong) {
    const AbecsWkPan key = working_key(0);
    const std::string pan = std::string(48, '0') + "4111111111111111";
    const std::string track = std::string(112, '0') + "F0157C5DA1787BED";
    const std::string identified(255, '4');
    EXPECT_EQ(abecs_pan_encrypt(pan.c_str(), &key), std::string(48, '0') + "BEC8C7B720B1ED83");
    EXPECT_EQ(abecs_pan_decrypt_track(track.c_str(), &key), std::string(112, '0') + "4111111111111111");
    EXPECT_EQ(abecs_pan_identify(identified.c_str()), identified);
    EXPECT_RAISES(kArgument, "PAN length is too big (max: 64, requested: 65)", abecs_pan_encrypt2("", 65, &key));
    EXPECT_RAISES(kArgument, "Track length is too big (max: 128, requested: 129)",
                  abecs_pan_decrypt_track2("", 129, &key));
    EXPECT_RAISES(kArgument, "track length is too big (max: 255, requested: 256)", abecs_pan_identify2("", 256));
}

TEST(Pan, KeysMatterOnlyWhenThereIsSomethingToDecipher) {
    EXPECT_RAISES(kArgument, "'key' is NULL", abecs_pan_encrypt2("", 65, nullptr));
    EXPECT_RAISES(kArgument, "'key' is NULL", abecs_pan_decrypt_track2("", 129, nullptr));
    for (const int32_t type : {3, -1, INT32_MIN}) {
        const AbecsWkPan key = working_key(type);
        EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "Unhandled case", abecs_pan_encrypt("4111111111111111", &key));
        EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "Unhandled case", abecs_pan_decrypt_track("F0157C5DA1787BED", &key));
        EXPECT_STREQ(abecs_pan_encrypt("422222222222", &key), "422222222222");
        EXPECT_STREQ(abecs_pan_decrypt_track("F0157C5DA1=", &key), "F0157C5DA1=");
    }
}

TEST(Pan, ResultsAreStaticAndCanBeFedBack) {
    const AbecsWkPan key = working_key(0);
    const char* pan = abecs_pan_encrypt("4111111111111111", &key);
    const char* track = abecs_pan_decrypt_track("000F0157C5DA1787BED=2512", &key);
    const char* identified = abecs_pan_identify(track);
    EXPECT_STREQ(pan, "BEC8C7B720B1ED83");
    EXPECT_EQ(abecs_pan_identify(identified), identified);
    EXPECT_STREQ(identified, "0004111111111111111");
    EXPECT_EQ(abecs_pan_encrypt(pan, &key), pan);
}

}  // namespace
