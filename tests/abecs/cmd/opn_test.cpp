// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/opn.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

#include "tests/abecs/cmd/rsa_peer.h"
#include "tests/support/link.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;
using support::rsa_encipher;

constexpr std::array<uint8_t, 16> kOldKey{9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9};
const std::string kSessionKey = "F0E1D2C3B4A5968778695A4B3C2D1E0F"_hex;
const std::string kAck = "06"_hex;

// SYN, "OPN523", "0", "256", modulus, "3", exponent, ETB and CRC. Digits need no escapes.
constexpr size_t kModulusAt = 1 + 6 + 1 + 3;
constexpr size_t kModulusDigits = 512;
constexpr size_t kFrameLength = kModulusAt + kModulusDigits + 1 + 6 + 1 + 2;

std::string modulus_of(const std::string& received) {
    EXPECT_EQ(received.substr(0, kModulusAt), "\x16OPN5230256");
    EXPECT_EQ(received.substr(kModulusAt + kModulusDigits, 8), "3010001\x17");
    EXPECT_EQ(received.find_first_not_of("0123456789ABCDEF", kModulusAt), kModulusAt + kModulusDigits + 7);
    return received.substr(kModulusAt, kModulusDigits);
}

std::string padded(const std::string& head, const std::string& key) {
    return head + std::string(256 - head.size() - 1 - key.size(), '\x5A') + '\0' + key;
}

using Respond = std::function<std::string(const std::string& modulus)>;

void answer(Link& link, Respond respond) {
    link.peer.reply(kFrameLength, [respond = std::move(respond)](const std::string& received) {
        return kAck + support::frame(respond(modulus_of(received)));
    });
}

bool holds(const Link& link, const std::string& key) {
    return link.comm->keySet && std::string(link.comm->key.begin(), link.comm->key.end()) == key;
}

TEST(Opn, PlainSendsItsIdAlone) {
    Link link;
    link.peer.expect("16 4F504E 17 A8A9"_hex).send(kAck).response("OPN000");
    EXPECT_NO_RAISE(abecs_comm_set_key(link.comm, kOldKey.data()));
    EXPECT_EQ(link.call(abecs_cmd_opn)(false), 0);
    EXPECT_TRUE(link.comm->keySet) << "a plain OPN leaves the session as it was";
}

TEST(Opn, SecureTakesTheKeyOfTheCryptogram) {
    for (const std::string& key : {kSessionKey, "30303030303030303030303030303030"_hex}) {
        Link link;
        answer(link, [&](const std::string& modulus) {
            const auto encipher = key == kSessionKey ? rsa_encipher : support::rsa_encipher_like_padding;
            return "OPN000515256" + encipher(padded("0002"_hex, key), modulus);
        });
        EXPECT_EQ(link.call(abecs_cmd_opn)(true), 0);
        EXPECT_TRUE(holds(link, key));
    }
}

TEST(Opn, SecureWithoutAKeyIsAnInvalidCall) {
    for (const auto& [response, stat] : {std::pair{"OPN000", 10}, {"OPN046", 46}, {"ERR010", 10}}) {
        Link link;
        answer(link, [text = std::string(response)](const std::string&) { return text; });
        EXPECT_EQ(link.call(abecs_cmd_opn)(true), stat);
        EXPECT_FALSE(link.comm->keySet);
    }
}

TEST(Opn, SecureTakesAKeyWhateverTheStatus) {
    Link link;
    answer(link, [](const std::string& modulus) {
        return "OPN046515256" + rsa_encipher(padded("0002"_hex, kSessionKey), modulus);
    });
    EXPECT_EQ(link.call(abecs_cmd_opn)(true), 46);
    EXPECT_TRUE(holds(link, kSessionKey));
}

TEST(Opn, BadKeysAreRefusedAndTheOldOneStays) {
    const auto refused = [](const Respond& respond, int16_t code, const char* detail) {
        Link link;
        EXPECT_NO_RAISE(abecs_comm_set_key(link.comm, kOldKey.data()));
        answer(link, respond);
        EXPECT_RAISES(code, detail, abecs_cmd_opn(link.comm, true));
        EXPECT_TRUE(holds(link, std::string(kOldKey.begin(), kOldKey.end()))) << detail;
    };
    const auto block = [&](const std::string& content, const char* detail) {
        refused([=](const std::string& modulus) { return "OPN000515256" + rsa_encipher(content, modulus); }, 12,
                detail);
    };
    const auto text = [&](const std::string& response, int16_t code, const char* detail) {
        refused([=](const std::string&) { return response; }, code, detail);
    };
    const std::string zeros(512, '0');
    block(padded("0001"_hex, kSessionKey), "(OPN) Invalid PCKS#1 block header");
    block(padded("0102"_hex, kSessionKey), "(OPN) Invalid PCKS#1 block header");
    block("0002"_hex + std::string(254, 'x'), "(OPN) Invalid Ksec length (expected: 16, read: 0)");
    block(padded("0002"_hex, kSessionKey.substr(1)), "(OPN) Invalid Ksec length (expected: 16, read: 15)");
    block(padded("0002"_hex, "x" + kSessionKey), "(OPN) Invalid Ksec length (expected: 16, read: 17)");
    text("OPN000514256" + zeros, 12, "(OPN) Invalid RSP_LEN1: 514");
    text("OPN000515255" + zeros, 12, "(OPN) Invalid OPN_CRKSLEN: 255");
    text("OPN000515256" + zeros.substr(2), 6, "Buffer does not have enough data (requested: 512, available: 510)");
    text("OPN000515256" + zeros.substr(2) + "0x", 6, "Invalid data: 0x");
    text("OPN011x", 6, "Buffer does not have enough data (requested: 3, available: 1)");
    text("OPN00", 12, "Unrecognized response");
    text("GIN000", 12, "(OPN) Invalid RSP_ID: GIN");
}

}  // namespace
