// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <gtest/gtest.h>
#include <type_traits>

#include "abecs/comm/comm.h"
#include "quorvel/quorvel.h"
#include "simulator/pin_pad.h"
#include "tests/simulator/host_key.h"
#include "tests/support/raised.h"
#include "tests/support/wire.h"

namespace {

using namespace quorvel::sim;
using namespace support::literals;

std::string from_digits(std::string_view digits) { return support::operator""_hex(digits.data(), digits.size()); }

// What the PIN pad has at index 0, and the working key to use under it.
const std::string kMasterKey = "0123456789ABCDEF FEDCBA9876543210"_hex;
const char* const kWorkingKey = "11223344556677889900AABBCCDDEEFF";
const std::string kClearWorkingKey = from_digits(kWorkingKey);

// The published keys of the first transactions of DUKPT.
const std::string kPinKeys[]{"042666B49184CF5C 68DE9628D0397B36"_hex, "C46551CEF9FD244F AA9AD834130D3B38"_hex,
                             "0DF3D9422ACA561A 47676D07AD6BAD05"_hex};

AbecsMk master(AbecsMkType_E type) {
    AbecsMk mk{type, 0, {}};
    std::copy(kMasterKey.begin(), kMasterKey.end(), mk.key);
    return mk;
}

// The library and a virtual PIN pad at the other end of its link, plainly and in an encrypted session.
class Keys : public testing::TestWithParam<bool> {
protected:
    Keys() {
        pinPad_.start();
        EXPECT_NO_RAISE(link_ = abecs_comm_open(pinPad_.path().c_str()));
    }
    ~Keys() override { EXPECT_NO_RAISE(abecs_comm_close(&link_)); }

    void SetUp() override { EXPECT_EQ(call(abecs_cmd_opn, GetParam()), ABECS_RSP_STAT_ST_OK); }

    // The command's status; -3, which none has, when it raises.
    template <typename... Parameters>
    int32_t call(int32_t (*command)(AbecsComm*, Parameters...), std::type_identity_t<Parameters>... arguments) {
        int32_t status = -3;
        EXPECT_NO_RAISE(status = command(link_, arguments...));
        return status;
    }

    // Sends a blocking command during which the cardholder does so.
    template <typename Result, typename... Parameters>
    void begin(const char* id, const Gestures& gestures, Result (*command)(AbecsComm*, Parameters...),
               std::type_identity_t<Parameters>... arguments) {
        pinPad_.when(id, gestures);
        EXPECT_NO_RAISE(static_cast<void>(command(link_, arguments...)));
    }

    // The block that the PIN pad makes of `data`, 16 digits.
    std::string enb(const char* data) {
        const AbecsMk mk = master(ABECS_MK_TYPE_TDES);
        AbecsCmdEnbCmdData request{ABECS_CMD_ENB_METHOD_1, 0, "", ""};
        EXPECT_NO_RAISE(abecs_cmd_enb_encrypt_wk(kWorkingKey, &mk, request.wkEnc));
        std::string(data).copy(request.data, sizeof request.data);
        char out[17] = "";
        EXPECT_EQ(call(abecs_cmd_enb, &request, out), ABECS_RSP_STAT_ST_OK);
        return out;
    }

    // The clear PIN block of the PIN 12345, typed for this card number as it is sent.
    std::string pin_block(const std::string& pan) {
        AbecsCmdGpnCmdData request{ABECS_CMD_GPN_METHOD_DUKPT_TDES, 0, "", "", 1, {{4, 12, "PIN"}}};
        pan.copy(request.pan, sizeof request.pan);
        AbecsCmdGpnRspData out{};
        begin("GPN", Gestures().type("12345"), abecs_cmd_gpn, &request);
        EXPECT_EQ(call(abecs_cmd_gpn_response, &out, nullptr), ABECS_RSP_STAT_ST_OK);
        return tdes_decipher(kPinKeys[pinBlocks_++], from_digits(out.pinBlk));
    }

    int32_t load(AbecsWkPanType_E type, AbecsWkPan* out) {
        if (type == ABECS_WK_PAN_TYPE_TDES_RSA) { return call(abecs_cmd_dwk2, out, true); }
        const AbecsMk mk = master(type == ABECS_WK_PAN_TYPE_DES ? ABECS_MK_TYPE_DES : ABECS_MK_TYPE_TDES);
        return call(abecs_cmd_dwk1, &mk, out, true);
    }

    // The PIN pad has the same key: it undoes what the host does to a block and to a card number.
    void expect_shared(const AbecsWkPan& key) {
        char data[17] = "";
        EXPECT_NO_RAISE(abecs_cmd_enb_encode_data("0123456789ABCDEF", &key, data));
        EXPECT_EQ(tdes_decipher(kClearWorkingKey, from_digits(enb(data))), "0123456789ABCDEF"_hex);
        const std::string pan = abecs_pan_encrypt("4111111111111111", &key);
        EXPECT_NE(pan, "4111111111111111");
        EXPECT_EQ(pin_block(pan), "0512254EEEEEEEEE"_hex);
    }

    template <typename Read>
    static void expect_tracks(const Read& read, const Card& card) {
        EXPECT_EQ(read.track1, card.track1);
        EXPECT_EQ(read.track2, card.track2);
        EXPECT_EQ(read.track3, card.track3);
    }

    void expect_clear_tracks(const std::string& pan) {
        const Card card{.pan = pan,
                        .track1 = "B" + pan + "^DOE/JOHN^3012101",
                        .track2 = pan + "=30121010000000000",
                        .track3 = "01" + pan + "==724724000000000030300100000000000000=1=0"};
        AbecsCmdCkeOut out{};
        begin("CKE", Gestures().swipe(card), abecs_cmd_cke, false, true, ABECS_CMD_CKE_ICC_CHECK_TYPE_0,
              ABECS_CMD_CKE_CTLS_CHECK_TYPE_NOT_SENT);
        EXPECT_EQ(call(abecs_cmd_cke_response, &out, nullptr), ABECS_RSP_STAT_ST_OK);
        expect_tracks(out, card);
        AbecsCmdGcrResponse read{};
        begin("GCR", Gestures().swipe(card), abecs_cmd_gcr_empty);
        EXPECT_EQ(call(abecs_cmd_gcr_response, &read, nullptr), ABECS_RSP_STAT_ST_OK);
        expect_tracks(read, card);
        EXPECT_EQ(read.pan, pan);
    }

    void expect_marks(bool installed) {
        EXPECT_EQ(link_->panProtected, installed);
        EXPECT_EQ(link_->panKeyInstalled, installed);
    }

    PinPad pinPad_;
    AbecsComm* link_ = nullptr;
    size_t pinBlocks_ = 0;
};

INSTANTIATE_TEST_SUITE_P(In, Keys, testing::Bool());

TEST_P(Keys, OfPanServeOnTheLinkUntilTheSessionEnds) {
    for (const auto type : {ABECS_WK_PAN_TYPE_DES, ABECS_WK_PAN_TYPE_TDES, ABECS_WK_PAN_TYPE_TDES_RSA}) {
        AbecsWkPan key{};
        EXPECT_EQ(load(type, &key), ABECS_RSP_STAT_ST_OK);
        expect_marks(true);
        EXPECT_EQ(key.type, type);
        EXPECT_EQ(link_->wkPanType, key.type);
        EXPECT_TRUE(std::equal(std::begin(key.key), std::end(key.key), link_->wkPanKey.begin()));
        expect_shared(key);
        for (const char* pan : {"4111111111111111", "4222222222222", "6799990100000000019"}) {
            expect_clear_tracks(pan);
        }
        AbecsWkPan next{};
        EXPECT_EQ(load(type, &next), ABECS_RSP_STAT_ST_OK);
        EXPECT_FALSE(std::equal(std::begin(key.key), std::end(key.key), std::begin(next.key)));
        expect_clear_tracks("4111111111111111");
        EXPECT_EQ(call(abecs_cmd_clo, nullptr), ABECS_RSP_STAT_ST_OK);
        expect_marks(false);
        EXPECT_EQ(call(abecs_cmd_opn, false), ABECS_RSP_STAT_ST_OK);
        expect_clear_tracks("4111111111111111");
        SetUp();
    }
    pinPad_.stop();
    EXPECT_TRUE(pinPad_.findings().empty());
    EXPECT_FALSE(pinPad_.device().panKey.has_value());
}

}  // namespace
