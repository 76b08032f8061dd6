// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/dwk.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <string>

#include "quorvel/kor/system.h"
#include "tests/abecs/cmd/rsa_peer.h"
#include "tests/simulator/host_key.h"
#include "tests/support/link.h"
#include "tests/support/refused.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;

const std::string kAck = "06"_hex;
constexpr AbecsWkPan kOldKey{ABECS_WK_PAN_TYPE_DES, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};
constexpr uint8_t kMasterKey[16] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF,
                                    0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10};

std::string bytes_of(const uint8_t (&key)[16]) { return {key, key + sizeof key}; }

std::string from_hex(const std::string& digits) {
    EXPECT_EQ(digits.find_first_not_of("0123456789ABCDEF"), std::string::npos);
    return operator""_hex(digits.c_str(), digits.size());
}

struct Expected {
    bool panProtected;
    bool panKeyInstalled;
    const AbecsWkPan& key;
};

void expect_link(const Link& link, const Expected& expected) {
    EXPECT_EQ(link.comm->panProtected, expected.panProtected);
    EXPECT_EQ(link.comm->panKeyInstalled, expected.panKeyInstalled);
    EXPECT_EQ(link.comm->wkPanType, expected.key.type);
    EXPECT_EQ(std::string(link.comm->wkPanKey.begin(), link.comm->wkPanKey.end()), bytes_of(expected.key.key));
}

// SYN, "DWK036", "1", type, index, 32 digits, ETB and CRC. Digits need no escapes.
constexpr size_t kDwk1Length = 1 + 6 + 1 + 1 + 2 + 32 + 1 + 2;

// Takes a request, keeps it and answers.
void answer(Link& link, size_t length, std::string* request, std::string response) {
    link.peer.reply(length, [request, response = std::move(response)](const std::string& received) {
        *request = received;
        return kAck + support::frame(response);
    });
}

class Dwk1 : public testing::TestWithParam<AbecsMkType_E> {
protected:
    Dwk1() { std::copy(std::begin(kMasterKey), std::end(kMasterKey), std::begin(master_.key)); }

    [[nodiscard]] std::string key_of(const std::string& request) const {
        const bool des = GetParam() == ABECS_MK_TYPE_DES;
        EXPECT_EQ(request.substr(0, 11), des ? "\x16"
                                               "DWK0361099"
                                             : "\x16"
                                               "DWK0361199");
        EXPECT_EQ(request[43], '\x17');
        const std::string half(kMasterKey, kMasterKey + 8);
        return tdes_decipher(des ? half + half : bytes_of(kMasterKey), from_hex(request.substr(11, 32)));
    }

    AbecsMk master_{GetParam(), 99, {}};
};

INSTANTIATE_TEST_SUITE_P(Of, Dwk1, testing::Values(ABECS_MK_TYPE_DES, ABECS_MK_TYPE_TDES),
                         [](const auto& test) { return test.param == ABECS_MK_TYPE_DES ? "Des" : "Tdes"; });

TEST_P(Dwk1, LoadsAFreshKeyEachTime) {
    std::set<std::string> keys;
    for (const bool setOnLink : {true, false}) {
        Link link;
        EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link.comm, &kOldKey));
        std::string request;
        answer(link, kDwk1Length, &request, "DWK000");
        AbecsWkPan key{};
        EXPECT_EQ(link.call(abecs_cmd_dwk1)(&master_, &key, setOnLink), 0);
        EXPECT_EQ(key.type, GetParam() == ABECS_MK_TYPE_DES ? ABECS_WK_PAN_TYPE_DES : ABECS_WK_PAN_TYPE_TDES);
        EXPECT_EQ(key_of(request), bytes_of(key.key));
        expect_link(link, {true, setOnLink, setOnLink ? key : kOldKey});
        keys.insert(bytes_of(key.key));
    }
    EXPECT_EQ(keys.size(), 2U);
}

// The header warns of it: the key is only as secret as what the C library's generator was seeded with.
TEST_P(Dwk1, DrawsTheKeyFromTheGeneratorThatAnApplicationMaySeed) {
    const auto drawn = [&](unsigned seed) {
        Link link;
        std::string request;
        answer(link, kDwk1Length, &request, "DWK000");
        AbecsWkPan key{};
        std::srand(seed);
        EXPECT_EQ(link.call(abecs_cmd_dwk1)(&master_, &key, true), 0);
        return bytes_of(key.key);
    };
    kor_system_random(0, 1);
    const std::string key = drawn(7);
    EXPECT_EQ(drawn(7), key);
    EXPECT_NE(drawn(8), key);
}

TEST_P(Dwk1, LeavesTheLinkAsItWasWhenItFails) {
    const auto fails = [&](const char* response, int32_t expected, const support::Raised& error) {
        for (const bool setOnLink : {false, true}) {
            Link link;
            EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link.comm, &kOldKey));
            std::string request;
            answer(link, kDwk1Length, &request, response);
            AbecsWkPan key = kOldKey;
            int32_t stat = -99;
            EXPECT_EQ(support::raised_by([&] { stat = abecs_cmd_dwk1(link.comm, &master_, &key, setOnLink); }), error);
            EXPECT_EQ(stat, expected);
            expect_link(link, {true, true, kOldKey});
            EXPECT_EQ(bytes_of(key.key), bytes_of(kOldKey.key));
        }
    };
    fails("DWK042", 42, {});
    fails("ERR010", 10, {});
    fails("DWK00", -99, support::error(12, "Unrecognized response"));
    fails("OPN000", -99, support::error(12, "(DWK) Invalid RSP_ID: OPN)"));
}

TEST_P(Dwk1, ChecksItsArgumentsInOrder) {
    Link link;
    AbecsWkPan key{};
    AbecsMk mk = master_;
    mk.idx = 100;
    EXPECT_REFUSED(2, "Invalid master key index: 100 (max: 99)", abecs_cmd_dwk1(link.comm, &mk, &key, true));
    for (const int32_t type : {-1, 2}) {
        mk.type = static_cast<AbecsMkType_E>(type);
        EXPECT_REFUSED(2, "Invalid enumerator for AbecsMkType_E: " + std::to_string(type),
                       abecs_cmd_dwk1(link.comm, &mk, &key, true));
    }
    EXPECT_REFUSED(2, "'mk' is NULL", abecs_cmd_dwk1(link.comm, nullptr, &key, true));
}

// SYN, "DWK263", "2", modulus, exponent, ETB and CRC.
constexpr size_t kModulusAt = 1 + 6 + 1;
constexpr size_t kModulusDigits = 256;
constexpr size_t kDwk2Length = kModulusAt + kModulusDigits + 6 + 1 + 2;

const std::string kKeyDigits = "0F1E2D3C4B5A69788796A5B4C3D2E1F0";

// The block under the host's public key.
std::string block(const std::string& head, const std::string& key, char end) {
    return head + "9 filling" + key + std::string(84, '\xA5') + end;
}

using Respond = std::function<std::string(const std::string& modulus)>;

Respond enciphered(const std::string& block) {
    return [block](const std::string& modulus) { return "DWK000256" + support::rsa_encipher(block, modulus); };
}

void answer(Link& link, Respond respond) {
    link.peer.reply(kDwk2Length, [respond = std::move(respond)](const std::string& received) {
        EXPECT_EQ(received.substr(0, kModulusAt),
                  "\x16"
                  "DWK2632");
        EXPECT_EQ(received.substr(kModulusAt + kModulusDigits, 7), "010001\x17");
        EXPECT_GE(received[kModulusAt], '8') << "a modulus of 1024 bits";
        return kAck + support::frame(respond(received.substr(kModulusAt, kModulusDigits)));
    });
}

TEST(Dwk2, TakesTheKeyOutOfTheBlock) {
    const auto takes = [](const std::string& digits, const std::string& key, bool setOnLink, bool out) {
        AbecsWkPan expected{ABECS_WK_PAN_TYPE_TDES_RSA, {}};
        std::copy(key.begin(), key.end(), std::begin(expected.key));
        Link link;
        EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link.comm, &kOldKey));
        answer(link, enciphered(block("T1", digits, 'X')));
        AbecsWkPan taken = expected;
        if (out) { taken = {}; }
        EXPECT_EQ(link.call(abecs_cmd_dwk2)(out ? &taken : nullptr, setOnLink), 0);
        EXPECT_EQ(taken.type, expected.type);
        EXPECT_EQ(bytes_of(taken.key), key);
        expect_link(link, {setOnLink, setOnLink, setOnLink ? expected : kOldKey});
    };
    takes("0F1E2D3C4B5A69788796A5B4C3D2E1F0", "0F1E2D3C4B5A69788796A5B4C3D2E1F0"_hex, true, true);
    takes("0f1e2d3c4b5a69788796a5b4c3d2e1f0", "0F1E2D3C4B5A69788796A5B4C3D2E1F0"_hex, false, true);
    takes("30303030303030303030303030303030", "30303030303030303030303030303030"_hex, true, true);
    takes("303030304B5A69788796A5B4C3D2E1F0", "303030304B5A69788796A5B4C3D2E1F0"_hex, true, false);
}

TEST(Dwk2, CryptogramThatBeginsLikePaddingWorksLikeAnyOther) {
    Link link;
    answer(link, [](const std::string& modulus) {
        return "DWK000256" + support::rsa_encipher_like_padding(block("T1", kKeyDigits, 'X'), modulus);
    });
    AbecsWkPan out{};
    EXPECT_EQ(link.call(abecs_cmd_dwk2)(&out, true), 0);
    EXPECT_EQ(bytes_of(out.key), from_hex(kKeyDigits));
}

TEST(Dwk2, RefusesBadBlocksAndLeavesTheLinkAsItWas) {
    const auto fails = [](const Respond& respond, const support::Raised& error) {
        for (const bool setOnLink : {true, false}) {
            Link link;
            EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link.comm, &kOldKey));
            answer(link, respond);
            AbecsWkPan out = kOldKey;
            int32_t stat = 10;
            EXPECT_EQ(support::raised_by([&] { stat = abecs_cmd_dwk2(link.comm, &out, setOnLink); }), error);
            EXPECT_EQ(stat, 10);
            expect_link(link, {true, true, kOldKey});
            EXPECT_EQ(bytes_of(out.key), bytes_of(kOldKey.key));
        }
    };
    const auto refused = [&](const std::string& head, const std::string& key, char end, const support::Raised& error) {
        fails(enciphered(block(head, key, end)), error);
    };
    refused("T1", kKeyDigits, 'Y', support::error(12, "(DWK) Invalid block end (expected: 'X', read: 'Y')"));
    refused("U2", kKeyDigits, 'Y', support::error(12, "(DWK) Invalid header: 55 (expected: 0x54)"));
    refused(" 1", kKeyDigits, 'X', support::error(12, "(DWK) Invalid header: 00 (expected: 0x54)"));
    refused("\0011", kKeyDigits, 'X', support::error(6, "Invalid character (0x01) at position 0"));
    refused("T2", kKeyDigits, 'Y', support::error(12, "(DWK) Invalid layout version: 2 (expected: 1)"));
    refused("Tx", kKeyDigits, 'X', support::error(6, "Invalid char (0x78) at index 0"));
    refused("T1", kKeyDigits.substr(2) + "?0", 'Y', support::error(6, "Invalid data: ?0"));
    const auto text = [&](const std::string& response, const support::Raised& error) {
        fails([=](const std::string&) { return response; }, error);
    };
    const std::string zeros(256, '0');
    text("DWK000255" + zeros, support::error(12, "Invalid RSP_LEN: 255 (expected: 256)"));
    text("DWK000256" + zeros.substr(2),
         support::error(6, "Buffer does not have enough data (requested: 256, available: 254)"));
    text("DWK000256" + zeros.substr(2) + "0x", support::error(6, "Invalid data: 0x"));
    text("DWK00", support::error(12, "Unrecognized response"));
    text("ENB000", support::error(12, "(DWK) Invalid RSP_ID: ENB)"));
    text("DWK010256" + zeros, {});
}

}  // namespace
