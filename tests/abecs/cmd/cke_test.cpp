// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/cke.h"

#include <gtest/gtest.h>
#include <map>
#include <string>

#include "tests/support/link.h"
#include "tests/support/refused.h"

namespace {

using support::Link;

constexpr AbecsWkPan kTdes{
    ABECS_WK_PAN_TYPE_TDES,
    {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10}};
constexpr AbecsWkPan kDes{ABECS_WK_PAN_TYPE_DES, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};

std::string fill(std::string text, size_t width) {
    text.resize(width, ' ');
    return text;
}

// The last sixteen digits of each number under the keys above, made with another program.
const std::string kClear1 = "B4111111111111111^DOE/JOHN^25121010000000000";
const std::string kClear2 = "4222222222222=25121010000000000000000";
const std::string kClear3 = "595555555555554444=" + std::string(85, '7');
const std::string kTdes1 = "B69D9405C8462F410^DOE/JOHN^25121010000000000";
const std::string kTdes2 = "5ABE7F4BB6BCADD5=25121010000000000000000";
const std::string kTdes3 = "594882433BAE920295=" + std::string(85, '7');
const std::string kDes1 = "BF0157C5DA1787BED^DOE/JOHN^25121010000000000";
const std::string kDes2 = "C5EAC4F69B8381EB=25121010000000000000000";
const std::string kDes3 = "59C9F6AB867EBDA5DD=" + std::string(85, '7');

struct Poll {
    int32_t status = -99;
    AbecsCmdCkeOut out{};
};

class Cke : public testing::Test {
protected:
    void send() {
        link_.peer.request("CKE0041121");
        link_.call(abecs_cmd_cke)(true, true, ABECS_CMD_CKE_ICC_CHECK_TYPE_2, ABECS_CMD_CKE_CTLS_CHECK_TYPE_1);
    }

    Poll answer(const std::string& response) {
        send();
        link_.peer.response(response);
        Poll poll;
        poll.status = link_.call(abecs_cmd_cke_response)(&poll.out, nullptr);
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), "");
        return poll;
    }

    void expect_tracks(const std::string& response, const std::string& track1, const std::string& track2,
                       const std::string& track3) {
        const auto [status, out] = answer(response);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(out.event, ABECS_CMD_CKE_EVENT_MAGNETIC_CARD);
        EXPECT_EQ(out.track1, track1);
        EXPECT_EQ(out.trk1Len, track1.size());
        EXPECT_EQ(out.track2, track2);
        EXPECT_EQ(out.trk2Len, track2.size());
        EXPECT_EQ(out.track3, track3);
        EXPECT_EQ(out.trk3Len, track3.size());
    }

    // The layout of protected mode, with the key on the link or without.
    void protect(const AbecsWkPan& key, bool installed) {
        EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link_.comm, &key));
        link_.comm->panKeyInstalled = installed;
    }

    Link link_;
};

TEST_F(Cke, SendsTheFourthDigitOnlyWhenAsked) {
    const auto sends = [](bool key, bool mag, int32_t icc, int32_t ctls, const char* request) {
        Link link;
        link.peer.request(request);
        link.call(abecs_cmd_cke)(key, mag, static_cast<AbecsCmdCkeIccCheckType_E>(icc),
                                 static_cast<AbecsCmdCkeCtlsCheckType_E>(ctls));
    };
    sends(false, false, 0, -1, "CKE003000");
    sends(true, false, 1, -1, "CKE003101");
    sends(false, true, 2, 0, "CKE0040120");
    sends(true, true, 0, 1, "CKE0041101");
}

// As a caller's own declaration may have it, in a language that has no bool.
TEST_F(Cke, TakesEveryNumberButZeroForTrue) {
    using Foreign = void (*)(AbecsComm*, int, int, AbecsCmdCkeIccCheckType_E, AbecsCmdCkeCtlsCheckType_E);
    const auto send = reinterpret_cast<Foreign>(reinterpret_cast<void (*)()>(abecs_cmd_cke));
    link_.peer.request("CKE003110");
    EXPECT_NO_RAISE(send(link_.comm, 2, 255, ABECS_CMD_CKE_ICC_CHECK_TYPE_0, ABECS_CMD_CKE_CTLS_CHECK_TYPE_NOT_SENT));
}

TEST_F(Cke, RefusesOtherWaysOfChecking) {
    const auto send = [&](int32_t icc, int32_t ctls) {
        abecs_cmd_cke(link_.comm, true, true, static_cast<AbecsCmdCkeIccCheckType_E>(icc),
                      static_cast<AbecsCmdCkeCtlsCheckType_E>(ctls));
    };
    EXPECT_REFUSED(2, "Invalid enumerator for AbecsCmdCkeIccCheckType_E: 3", send(3, 2));
    EXPECT_REFUSED(2, "Invalid enumerator for AbecsCmdCkeIccCheckType_E: -1", send(-1, 0));
    EXPECT_REFUSED(2, "Invalid enumerator for AbecsCmdCkeCtlsCheckType_E: 2", send(0, 2));
    EXPECT_REFUSED(2, "Invalid enumerator for AbecsCmdCkeCtlsCheckType_E: -2", send(0, -2));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), "");
}

TEST_F(Cke, ReadsKeysAndWhetherACardIsThere) {
    const std::map<std::string, int32_t> keys{{"00", 0}, {"01", 0}, {"02", 0}, {"03", 0}, {"04", 4},  {"05", 5},
                                              {"06", 6}, {"07", 7}, {"08", 8}, {"12", 0}, {"13", 13}, {"99", 0}};
    for (const auto& [code, key] : keys) {
        const auto [status, out] = answer("CKE0000030" + code);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(out.event, ABECS_CMD_CKE_EVENT_KEY);
        EXPECT_EQ(out.key, key) << code;
    }
    for (const bool present : {true, false}) {
        const AbecsCmdCkeOut icc = answer(present ? "CKE00000221" : "CKE00000220").out;
        EXPECT_EQ(icc.event, ABECS_CMD_CKE_EVENT_ICC);
        EXPECT_EQ(icc.iccPresent, present);
        const AbecsCmdCkeOut ctls = answer(present ? "CKE00000231" : "CKE00000230").out;
        EXPECT_EQ(ctls.event, ABECS_CMD_CKE_EVENT_CTLS);
        EXPECT_EQ(ctls.ctlsPresent, present);
    }
}

// What the PIN pad says of the lengths is not what comes out: it counts other texts, or is wrong.
TEST_F(Cke, ReadsTracksOfAnOpenLink) {
    expect_tracks("CKE000225144" + fill(kClear1, 76) + "37" + kClear2 + "104" + kClear3, kClear1, kClear2, kClear3);
    expect_tracks("CKE000225199" + fill(kTdes1, 76) + "00" + fill("123=4", 37) + "999" + fill("", 104), kTdes1, "123=4",
                  "");
    expect_tracks("CKE000225100" + std::string(76, 'x') + "00" + std::string(37, 'y') + "000" + std::string(104, 'z'),
                  std::string(76, 'x'), std::string(37, 'y'), std::string(104, 'z'));
}

TEST_F(Cke, DeciphersTracksWithTheKeyOfTheLink) {
    protect(kTdes, true);
    expect_tracks("CKE000225144" + fill(kTdes1, 76) + "40" + kTdes2 + kTdes3, kClear1, kClear2, kClear3);
    expect_tracks("CKE000225199" + fill(kTdes1, 76) + "99" + fill("", 40) + fill("59?=1", 104), kClear1, "", "59?=1");
    protect(kDes, true);
    expect_tracks("CKE000225100" + fill(kDes1, 76) + "00" + kDes2 + kDes3, kClear1, kClear2, kClear3);
    expect_tracks("CKE000225100" + std::string(76, 'x') + "00" + std::string(40, 'y') + std::string(104, 'z'),
                  std::string(76, 'x'), std::string(40, 'y'), std::string(104, 'z'));
}

// In the protected layout without the key, track 2 has its open width and track 3 no length: three bytes are left.
TEST_F(Cke, ReadsTracksThatItCannotDecipher) {
    protect(kTdes, false);
    const std::string track2 = kTdes2.substr(0, 37);
    expect_tracks("CKE000225144" + fill(kTdes1, 76) + "40" + track2 + kTdes3 + "ZZZ", kTdes1, track2, kTdes3);
    // Which the PIN pad has as the end of track 2 and the beginning of track 3.
    expect_tracks("CKE000225144" + fill(kTdes1, 76) + "40" + track2 + "XYZ" + kTdes3, kTdes1, track2,
                  "XYZ" + kTdes3.substr(0, 101));
}

TEST_F(Cke, CannotDecipherWithAKeyOfAnUnknownType) {
    protect({static_cast<AbecsWkPanType_E>(3), {}}, true);
    send();
    link_.peer.response("CKE000225144" + fill(kTdes1, 76) + "40" + kTdes2 + kTdes3);
    AbecsCmdCkeOut out{};
    EXPECT_RAISES(1, "Unhandled case", abecs_cmd_cke_response(link_.comm, &out, nullptr));
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), "CKE");
}

TEST_F(Cke, DoesNotReadBehindTheAnswerInALayoutThatIsTooWide) {
    protect(kTdes, true);
    link_.comm->panProtected = false;
    send();
    link_.peer.response("CKE000225144" + fill(kTdes1, 76) + "40" + kTdes2 + "104" + std::string(101, 'z'));
    AbecsCmdCkeOut out{};
    EXPECT_RAISES(6, "Buffer does not have enough data (requested: 104, available: 101)",
                  abecs_cmd_cke_response(link_.comm, &out, nullptr));
}

TEST_F(Cke, RefusesMalformedEvents) {
    send();
    AbecsCmdCkeOut out{};
    const auto refused = [&](const std::string& data, int16_t code, const char* detail) {
        link_.peer.response("CKE000" + data);
        EXPECT_RAISES(code, detail, abecs_cmd_cke_response(link_.comm, &out, nullptr));
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), "CKE") << data;
    };
    refused("0020", 12, "'RSP_LEN1' invalid value  (expected: 3, received: 2)");
    refused("2551", 12, "'RSP_LEN1' invalid value  (expected: 255, received: 255)");
    refused("2261", 12, "'RSP_LEN1' invalid value  (expected: 255, received: 226)");
    refused("00325", 12, "'RSP_LEN1' invalid value (expected: 2, received: 3)");
    refused("00335", 12, "'RSP_LEN1' invalid value  (expected: 2, received: 3");
    refused("00222", 12, "'CKE_ICCSTAT' invalid value: 2");
    refused("00239", 12, "'CKE_CTLSCSTAT' invalid value: 9");
    refused("0024", 12, "'CKE_EVENT' invalid value: 4");
    refused("0009", 12, "'CKE_EVENT' invalid value: 9");
    refused("", 6, "Buffer does not have enough data (requested: 3, available: 0)");
    refused("003", 6, "Buffer does not have enough data (requested: 1, available: 0)");
    refused("00301", 6, "Buffer does not have enough data (requested: 2, available: 1)");
    refused("2251xx", 6, "Invalid char (0x78) at index 0");
}

}  // namespace
