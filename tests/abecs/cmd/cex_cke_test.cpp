// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;
using Items = ParamMap::Items;

const std::string kOpt = "0006 0006"_hex + "111111";

TEST(Cex, SendsWhatIsGiven) {
    const uint8_t timeOut = 255;
    const uint8_t wide[] = {0, 99};
    const uint8_t badMask[] = {0, 100};
    sends("CEX010" + kOpt, abecs_cmd_cex, "111111", nullptr, nullptr);
    sends("CEX023" + kOpt + "000C 0001 FF 0023 0004"_hex + "0099", abecs_cmd_cex, "111111", &timeOut, wide);
    for (const char* option : {static_cast<const char*>(nullptr), "11111", "1111111"}) {
        refuses("'cexOpt' is not valid!", abecs_cmd_cex, option, nullptr, nullptr);
    }
    refuses("Invalid character (0x0D) at position 5", abecs_cmd_cex, "11111\r", nullptr, nullptr);
    refuses("Number length (3) is greater than field length (2)", abecs_cmd_cex, "111111", nullptr, badMask);
}

class CexAnswer : public testing::Test {
protected:
    void expect_event(std::string_view text, const Outcome& expected) {
        std::vector<uint8_t> bytes(text.begin(), text.end());  // nothing stands behind them
        bytes.shrink_to_fit();
        const AbecsRspParamValue value{static_cast<uint32_t>(bytes.size()), bytes.empty() ? nullptr : bytes.data(),
                                       false};
        EXPECT_NO_RAISE(abecs_rsp_param_map_put(map_.get(), 0x8040, &value, false));
        EXPECT_EQ(outcome_of([&] { return abecs_cmd_cex_response_get_event(map_.get()); }), expected) << text;
    }

    static Raised unknown(int code) { return error(kProtocol, "Invalid code for PP_EVENT: " + std::to_string(code)); }

    ParamMap map_;
};

TEST_F(CexAnswer, IsKeptAsTexts) {
    EXPECT_RAISES(kProtocol, "Mandatory PP_EVENT not found", abecs_cmd_cex_response_get_event(map_.get()));
    const std::string track1 = "B4111******1111^DOE/J^2512101000";
    const std::string track2 = "4111******1111=251210100000";
    polls("CEX000077" + "8040 0002"_hex + "90" + "8041 0020"_hex + track1 + "8042 001B"_hex + track2 + "8043 0000"_hex,
          kOk, abecs_cmd_cex_response, map_.get(), nullptr);
    EXPECT_EQ(map_.items(), (Items{{0x8040, "90"}, {0x8041, track1}, {0x8042, track2}, {0x8043, ""}}));
    EXPECT_EQ(abecs_cmd_cex_response_get_event(map_.get()), ABECS_PP_EVENT_MAGNETIC_CARD);
    EXPECT_EQ(abecs_cmd_cex_response_get_trk1inc(map_.get()), track1);
    EXPECT_EQ(abecs_cmd_cex_response_get_trk2inc(map_.get()), track2);
    EXPECT_STREQ(abecs_cmd_cex_response_get_trk3inc(map_.get()), "");
}

// As the C library reads a decimal number: what stands behind it does not count, and without digits it is 0.
TEST_F(CexAnswer, HoldsAnEventOfAnyLength) {
    expect_event("95", unknown(95));
    expect_event(std::string(998, '0') + "7", 7);
    expect_event(std::string(997, ' ') + "94", 94);
    expect_event(" \t\n\v\f\r+0013", 13);
    expect_event(std::string_view("8\0001", 3), 8);
    expect_event("", 0);
    expect_event(std::string(500, '0') + std::string(499, '9'), unknown(INT32_MAX));
    expect_event("-" + std::string(998, '9'), unknown(-INT32_MAX));
    expect_event("-1", unknown(-1));
}

const AbecsWkPan kTdes = test_key(ABECS_WK_PAN_TYPE_TDES);
const AbecsWkPan kDes = test_key(ABECS_WK_PAN_TYPE_DES);

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

class Cke : public testing::Test {
protected:
    AbecsCmdCkeOut answered(const std::string& data, const Outcome& expected = kOk) {
        AbecsCmdCkeOut out{};
        Link link;
        EXPECT_NO_RAISE(abecs_comm_set_wk_pan(link.comm, key_));
        link.comm->panProtected = protected_;
        link.comm->panKeyInstalled = installed_;
        EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "CKE"));
        polls_on(link, "CKE000" + data, expected, abecs_cmd_cke_response, &out, nullptr);
        return out;
    }

    void expect_tracks(const std::string& data, const std::string& track1, const std::string& track2,
                       const std::string& track3) {
        const AbecsCmdCkeOut out = answered(data);
        EXPECT_EQ(out.event, ABECS_CMD_CKE_EVENT_MAGNETIC_CARD);
        EXPECT_EQ((Items{{1, out.track1}, {2, out.track2}, {3, out.track3}}),
                  (Items{{1, track1}, {2, track2}, {3, track3}}));
        EXPECT_EQ((std::vector<size_t>{out.trk1Len, out.trk2Len, out.trk3Len}),
                  (std::vector<size_t>{track1.size(), track2.size(), track3.size()}));
    }

    // The layout of protected mode, with the key on the link or without.
    void protect(const AbecsWkPan& key, bool layout, bool installed) {
        key_ = &key;
        protected_ = layout;
        installed_ = installed;
    }

private:
    const AbecsWkPan* key_ = nullptr;
    bool protected_ = false;
    bool installed_ = false;
};

TEST_F(Cke, SendsTheFourthDigitOnlyWhenAsked) {
    const auto icc = [](int32_t value) { return static_cast<AbecsCmdCkeIccCheckType_E>(value); };
    const auto ctls = [](int32_t value) { return static_cast<AbecsCmdCkeCtlsCheckType_E>(value); };
    sends("CKE003101", abecs_cmd_cke, true, false, icc(1), ctls(-1));
    sends("CKE0040120", abecs_cmd_cke, false, true, icc(2), ctls(0));
    sends("CKE0041101", abecs_cmd_cke, true, true, icc(0), ctls(1));
    // As a caller's own declaration may have it, in a language that has no bool.
    using Foreign = void (*)(AbecsComm*, int, int, AbecsCmdCkeIccCheckType_E, AbecsCmdCkeCtlsCheckType_E);
    sends("CKE003110", reinterpret_cast<Foreign>(reinterpret_cast<void (*)()>(abecs_cmd_cke)), 2, 255, icc(0),
          ctls(-1));
    refuses("Invalid enumerator for AbecsCmdCkeIccCheckType_E: 3", abecs_cmd_cke, true, true, icc(3), ctls(2));
    refuses("Invalid enumerator for AbecsCmdCkeCtlsCheckType_E: 2", abecs_cmd_cke, true, true, icc(0), ctls(2));
    refuses("Invalid enumerator for AbecsCmdCkeCtlsCheckType_E: -2", abecs_cmd_cke, true, true, icc(0), ctls(-2));
}

TEST_F(Cke, ReadsKeysAndWhetherACardIsThere) {
    for (const auto& [code, key] : {std::pair("03", 0), {"04", 4}, {"08", 8}, {"12", 0}, {"13", 13}, {"99", 0}}) {
        const AbecsCmdCkeOut out = answered(std::string("0030") + code);
        EXPECT_EQ(out.event, ABECS_CMD_CKE_EVENT_KEY);
        EXPECT_EQ(out.key, key) << code;
    }
    for (const bool present : {true, false}) {
        const AbecsCmdCkeOut icc = answered(present ? "00221" : "00220");
        EXPECT_EQ(icc.event, ABECS_CMD_CKE_EVENT_ICC);
        EXPECT_EQ(icc.iccPresent, present);
        const AbecsCmdCkeOut ctls = answered(present ? "00231" : "00230");
        EXPECT_EQ(ctls.event, ABECS_CMD_CKE_EVENT_CTLS);
        EXPECT_EQ(ctls.ctlsPresent, present);
    }
}

// What the PIN pad says of the lengths is not what comes out: it counts other texts, or is wrong.
TEST_F(Cke, ReadsTracksOfAnOpenLink) {
    const std::string full[] = {std::string(76, 'x'), std::string(37, 'y'), std::string(104, 'z')};
    expect_tracks("225144" + padded(kClear1, 76) + "37" + kClear2 + "104" + kClear3, kClear1, kClear2, kClear3);
    expect_tracks("225199" + padded(kTdes1, 76) + "00" + padded("123=4", 37) + "999" + padded("", 104), kTdes1, "123=4",
                  "");
    expect_tracks("225100" + full[0] + "00" + full[1] + "000" + full[2], full[0], full[1], full[2]);
}

TEST_F(Cke, DeciphersTracksWithTheKeyOfTheLink) {
    const std::string full[] = {std::string(76, 'x'), std::string(40, 'y'), std::string(104, 'z')};
    protect(kTdes, true, true);
    expect_tracks("225144" + padded(kTdes1, 76) + "40" + kTdes2 + kTdes3, kClear1, kClear2, kClear3);
    expect_tracks("225199" + padded(kTdes1, 76) + "99" + padded("", 40) + padded("59?=1", 104), kClear1, "", "59?=1");
    protect(kDes, true, true);
    expect_tracks("225100" + padded(kDes1, 76) + "00" + kDes2 + kDes3, kClear1, kClear2, kClear3);
    expect_tracks("225100" + full[0] + "00" + full[1] + full[2], full[0], full[1], full[2]);
}

// In the protected layout without the key, track 2 has its open width and track 3 no length: three bytes are left.
TEST_F(Cke, ReadsTracksThatItCannotDecipher) {
    protect(kTdes, true, false);
    const std::string track2 = kTdes2.substr(0, 37);
    expect_tracks("225144" + padded(kTdes1, 76) + "40" + track2 + kTdes3 + "ZZZ", kTdes1, track2, kTdes3);
    // Which the PIN pad has as the end of track 2 and the beginning of track 3.
    expect_tracks("225144" + padded(kTdes1, 76) + "40" + track2 + "XYZ" + kTdes3, kTdes1, track2,
                  "XYZ" + kTdes3.substr(0, 101));
}

TEST_F(Cke, RefusesMalformedEvents) {
    const auto refused = [&](const std::string& data, const char* detail) { answered(data, error(kProtocol, detail)); };
    refused("0020", "'RSP_LEN1' invalid value  (expected: 3, received: 2)");
    refused("2261", "'RSP_LEN1' invalid value  (expected: 255, received: 226)");
    refused("00325", "'RSP_LEN1' invalid value (expected: 2, received: 3)");
    refused("00335", "'RSP_LEN1' invalid value  (expected: 2, received: 3");
    refused("00222", "'CKE_ICCSTAT' invalid value: 2");
    refused("0024", "'CKE_EVENT' invalid value: 4");
    // A layout that is too wide, and a key that is none.
    const AbecsWkPan unknown{static_cast<AbecsWkPanType_E>(3), {}};
    protect(kTdes, false, true);
    answered("225144" + padded(kTdes1, 76) + "40" + kTdes2 + "104" + std::string(101, 'z'), too_few(104, 101));
    protect(unknown, true, true);
    answered("225144" + padded(kTdes1, 76) + "40" + kTdes2 + kTdes3, error(kRuntime, "Unhandled case"));
}

}  // namespace
