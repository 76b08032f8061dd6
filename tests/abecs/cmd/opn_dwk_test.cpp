// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <cstdlib>
#include <functional>
#include <set>

#include "tests/abecs/cmd/commands.h"
#include "tests/abecs/cmd/rsa_peer.h"
#include "tests/simulator/host_key.h"
#include "tests/support/malloc/failing_malloc.h"

namespace {

using namespace support;
using Respond = std::function<std::string(const std::string& modulus)>;

constexpr AbecsWkPan kOldKey{ABECS_WK_PAN_TYPE_DES, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};

std::string bytes_of(const uint8_t (&key)[16]) { return {key, key + sizeof key}; }

// Of upper-case digits.
std::string from_hex(const std::string& digits) { return operator""_hex(digits.c_str(), digits.size()); }

// Takes a request that is `head`, the digits of a modulus of full length, and `tail`. Digits need no escapes.
void answer(Link& link, const std::string& head, size_t digits, const std::string& tail, Respond respond) {
    const size_t length = head.size() + digits + tail.size() + 2;
    link.peer.reply(length, [=, respond = std::move(respond)](const std::string& received) {
        EXPECT_EQ(received.substr(0, head.size()), head);
        EXPECT_EQ(received.substr(head.size() + digits, tail.size()), tail);
        const std::string modulus = received.substr(head.size(), digits);
        EXPECT_EQ(modulus.find_first_not_of("0123456789ABCDEF"), std::string::npos);
        EXPECT_GE(modulus[0], '8');
        return "06"_hex + frame(respond(modulus));
    });
}

Respond text(const std::string& response) {
    return [response](const std::string&) { return response; };
}

// `head` and `block` under the host's public key.
Respond enciphered(const std::string& head, const std::string& block, bool likePadding = false) {
    return [=](const std::string& modulus) {
        return head + (likePadding ? rsa_encipher_like_padding : rsa_encipher)(block, modulus);
    };
}

const std::string kSessionKey = "F0E1D2C3B4A5968778695A4B3C2D1E0F"_hex;

Respond session(const std::string& start, const std::string& key, bool likePadding = false) {
    const std::string filling(256 - start.size() - 1 - key.size(), '\x5A');
    return enciphered("OPN000515256", start + filling + '\0' + key, likePadding);
}

// Answers a secure OPN on a link that has a key. Returns how many blocks of memory it has kept.
size_t opens(const Respond& respond, const Outcome& expected, const std::string& key = bytes_of(kOldKey.key)) {
    Link link;
    EXPECT_NO_RAISE(abecs_comm_set_key(link.comm, kOldKey.key));
    answer(link, "\x16OPN5230256", 512, "3010001\x17", respond);
    const FailingMalloc blocks(0);
    const Outcome outcome = outcome_of([&] { return abecs_cmd_opn(link.comm, true); });
    const size_t kept = blocks.kept();
    EXPECT_EQ(outcome, expected);
    EXPECT_EQ(link.comm->keySet, !key.empty());
    if (!key.empty()) { EXPECT_EQ(std::string(link.comm->key.begin(), link.comm->key.end()), key); }
    return kept;
}

TEST(Opn, PlainSendsItsIdAlone) {
    Link link;
    link.peer.expect("16 4F504E 17 A8A9"_hex).send("06"_hex).response("OPN000");
    EXPECT_NO_RAISE(abecs_comm_set_key(link.comm, kOldKey.key));
    EXPECT_EQ(outcome_of([&] { return abecs_cmd_opn(link.comm, false); }), kOk);
    EXPECT_TRUE(link.comm->keySet) << "a plain OPN leaves the session as it was";
}

TEST(Opn, SecureTakesTheKeyOfTheCryptogramWhateverTheStatus) {
    const std::string thirties(16, '0');
    opens(session("0002"_hex, kSessionKey), kOk, kSessionKey);
    // The frames of the try blocks are there by now.
    EXPECT_EQ(opens(session("0002"_hex, thirties, true), kOk, thirties), 0U);
    const Respond failing = [](const std::string& modulus) {
        return session("0002"_hex, kSessionKey)(modulus).replace(3, 3, "046");
    };
    opens(failing, ABECS_RSP_STAT_ST_ERRCRYPT, kSessionKey);
}

TEST(Opn, BadKeysAreRefusedAndTheOldOneStays) {
    const std::string zeros(512, '0');
    const auto length = [](const char* read) {
        return error(kProtocol, std::string("(OPN) Invalid Ksec length (expected: 16, read: ") + read + ")");
    };
    opens(session("0001"_hex, kSessionKey), error(kProtocol, "(OPN) Invalid PCKS#1 block header"));
    opens(enciphered("OPN000515256", "0002"_hex + std::string(254, 'x')), length("0"));
    opens(session("0002"_hex, "x" + kSessionKey), length("17"));
    opens(text("OPN000514256" + zeros), error(kProtocol, "(OPN) Invalid RSP_LEN1: 514"));
    opens(text("OPN000515255" + zeros), error(kProtocol, "(OPN) Invalid OPN_CRKSLEN: 255"));
    // Without a key it is an invalid call.
    opens(text("OPN000"), ABECS_RSP_STAT_ST_INVCALL);
}

void expect_link(const Link& link, bool panProtected, bool panKeyInstalled, const AbecsWkPan& key) {
    EXPECT_EQ(link.comm->panProtected, panProtected);
    EXPECT_EQ(link.comm->panKeyInstalled, panKeyInstalled);
    EXPECT_EQ(link.comm->wkPanType, key.type);
    EXPECT_EQ(std::string(link.comm->wkPanKey.begin(), link.comm->wkPanKey.end()), bytes_of(key.key));
}

class Dwk1 : public testing::TestWithParam<AbecsMkType_E> {
protected:
    Dwk1() { std::copy(std::begin(kTestKey), std::end(kTestKey), std::begin(master_.key)); }

    // On a link that has a key. The request carries the key that comes out.
    Outcome loads(const std::string& response, bool setOnLink, AbecsWkPan* key) {
        link_ = std::make_unique<Link>();
        EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link_->comm, &kOldKey));
        std::string request;
        // SYN, "DWK036", "1", type, index, 32 digits, ETB and CRC.
        link_->peer.reply(1 + 6 + 1 + 1 + 2 + 32 + 1 + 2, [&](const std::string& received) {
            request = received;
            return "06"_hex + frame(response);
        });
        Outcome outcome = outcome_of([&] { return abecs_cmd_dwk1(link_->comm, &master_, key, setOnLink); });
        const bool des = GetParam() == ABECS_MK_TYPE_DES;
        EXPECT_EQ(request.substr(1, 10), des ? "DWK0361099" : "DWK0361199");
        EXPECT_EQ(request[43], '\x17');
        const std::string half(kTestKey, kTestKey + 8);
        sent_ = tdes_decipher(des ? half + half : bytes_of(kTestKey), from_hex(request.substr(11, 32)));
        return outcome;
    }

    AbecsMk master_{GetParam(), 99, {}};
    std::unique_ptr<Link> link_;
    std::string sent_;
};

INSTANTIATE_TEST_SUITE_P(Of, Dwk1, testing::Values(ABECS_MK_TYPE_DES, ABECS_MK_TYPE_TDES),
                         [](const auto& test) { return test.param == ABECS_MK_TYPE_DES ? "Des" : "Tdes"; });

TEST_P(Dwk1, LoadsAFreshKeyEachTime) {
    std::set<std::string> keys;
    for (const bool setOnLink : {true, false}) {
        AbecsWkPan key{};
        EXPECT_EQ(loads("DWK000", setOnLink, &key), kOk);
        EXPECT_EQ(key.type, GetParam() == ABECS_MK_TYPE_DES ? ABECS_WK_PAN_TYPE_DES : ABECS_WK_PAN_TYPE_TDES);
        EXPECT_EQ(sent_, bytes_of(key.key));
        expect_link(*link_, true, setOnLink, setOnLink ? key : kOldKey);
        keys.insert(sent_);
    }
    EXPECT_EQ(keys.size(), 2U);
}

// The header warns of it: the key is only as secret as what the C library's generator was seeded with.
TEST_P(Dwk1, DrawsTheKeyFromTheGeneratorThatAnApplicationMaySeed) {
    const auto drawn = [&](unsigned seed) {
        AbecsWkPan key{};
        std::srand(seed);
        EXPECT_EQ(loads("DWK000", true, &key), kOk);
        return sent_;
    };
    kor_system_random(0, 1);
    const std::string key = drawn(7);
    EXPECT_EQ(drawn(7), key);
    EXPECT_NE(drawn(8), key);
}

TEST_P(Dwk1, LeavesTheLinkAsItWasWhenItFails) {
    const std::pair<const char*, Outcome> rows[] = {
        {"DWK042", ABECS_RSP_STAT_ST_ERRKEY},
        {"DWK00", error(kProtocol, "Unrecognized response")},
    };
    for (const auto& [response, expected] : rows) {
        AbecsWkPan key = kOldKey;
        EXPECT_EQ(loads(response, true, &key), expected);
        expect_link(*link_, true, true, kOldKey);
        EXPECT_EQ(bytes_of(key.key), bytes_of(kOldKey.key));
    }
}

TEST_P(Dwk1, ChecksItsArgumentsInOrder) {
    AbecsWkPan key{};
    refuses("'mk' is NULL", abecs_cmd_dwk1, nullptr, &key, true);
    const AbecsMk wrong{static_cast<AbecsMkType_E>(2), 100, {}};
    refuses("Invalid enumerator for AbecsMkType_E: 2", abecs_cmd_dwk1, &wrong, &key, true);
    master_.idx = 100;
    refuses("Invalid master key index: 100 (max: 99)", abecs_cmd_dwk1, &master_, &key, true);
}

const std::string kKeyDigits = "0F1E2D3C4B5A69788796A5B4C3D2E1F0";

// The block under the host's public key.
Respond pan_key(const std::string& head, const std::string& key, char end, bool likePadding = false) {
    return enciphered("DWK000256", head + "9 filling" + key + std::string(84, '\xA5') + end, likePadding);
}

// On a link that has a key, which stays when there is an error. The one that is expected is in `digits`.
void loads_rsa(const Respond& respond, const Outcome& expected, const std::string& digits = "") {
    for (const auto& [setOnLink, out] : {std::pair{true, true}, {true, false}, {false, true}}) {
        AbecsWkPan key = kOldKey;
        if (!digits.empty()) {
            key.type = ABECS_WK_PAN_TYPE_TDES_RSA;
            const std::string bytes = from_hex(digits);
            std::copy(bytes.begin(), bytes.end(), std::begin(key.key));
        }
        Link link;
        EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link.comm, &kOldKey));
        answer(link,
               "\x16"
               "DWK2632",
               256, "010001\x17", respond);
        AbecsWkPan taken = kOldKey;
        AbecsWkPan* const to = out ? &taken : nullptr;
        EXPECT_EQ(outcome_of([&link, to, set = setOnLink] { return abecs_cmd_dwk2(link.comm, to, set); }), expected);
        const bool changed = setOnLink || digits.empty();
        expect_link(link, changed, changed, setOnLink ? key : kOldKey);
        if (out) { EXPECT_EQ(bytes_of(taken.key), bytes_of(key.key)); }
        if (out) { EXPECT_EQ(taken.type, key.type); }
    }
}

TEST(Dwk2, TakesTheKeyOutOfTheBlock) {
    for (const std::string& digits : {repeated("30", 16), "303030" + kKeyDigits.substr(6)}) {
        loads_rsa(pan_key("T1", digits, 'X'), kOk, digits);
    }
    loads_rsa(pan_key("T1", "0f1e2d3c4b5a69788796a5b4c3d2e1f0", 'X'), kOk, kKeyDigits);
    loads_rsa(pan_key("T1", kKeyDigits, 'X', true), kOk, kKeyDigits);
}

TEST(Dwk2, RefusesBadBlocksAndLeavesTheLinkAsItWas) {
    const auto refused = [](const std::string& head, const std::string& key, char end, const char* detail) {
        loads_rsa(pan_key(head, key, end), error(kProtocol, detail));
    };
    refused("T1", kKeyDigits, 'Y', "(DWK) Invalid block end (expected: 'X', read: 'Y')");
    refused("U2", kKeyDigits, 'Y', "(DWK) Invalid header: 55 (expected: 0x54)");
    refused("T2", kKeyDigits, 'Y', "(DWK) Invalid layout version: 2 (expected: 1)");
    loads_rsa(pan_key("T1", kKeyDigits.substr(2) + "?0", 'Y'), error(kIo, "Invalid data: ?0"));
    const std::string zeros(256, '0');
    loads_rsa(text("DWK000255" + zeros), error(kProtocol, "Invalid RSP_LEN: 255 (expected: 256)"));
    loads_rsa(text("DWK010256" + zeros), ABECS_RSP_STAT_ST_INVCALL);
}

}  // namespace
