// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <iterator>
#include <tuple>

#include "abecs/comm/comm.h"
#include "tests/e2e/fixture.h"
#include "tests/simulator/host_key.h"

namespace {

using namespace quorvel::sim;

// What the PIN pad has at index 0, and the working key to use under it.
const std::string kMasterKey = "0123456789ABCDEF FEDCBA9876543210"_hex;
const char* const kWorkingKey = "11223344556677889900AABBCCDDEEFF";

AbecsMk master(AbecsMkType_E type) {
    AbecsMk mk{type, 0, {}};
    std::copy(kMasterKey.begin(), kMasterKey.end(), mk.key);
    return mk;
}

std::string digits_of(const std::string& bytes) { return to_hex(to_bytes(bytes)); }

class KeysTest : public EndToEnd {
protected:
    void open(bool secure) { EXPECT_EQ(call(abecs_cmd_opn, secure), ABECS_RSP_STAT_ST_OK); }

    // The block that the PIN pad makes of `data`, 16 digits.
    std::string enb(AbecsMkType_E type, const char* data) {
        const AbecsMk mk = master(type);
        AbecsCmdEnbCmdData request{static_cast<AbecsCmdEnbMethod_E>(type), 0, "", ""};
        EXPECT_NO_RAISE(abecs_cmd_enb_encrypt_wk(kWorkingKey, &mk, request.wkEnc));
        std::string(data).copy(request.data, sizeof request.data);
        char out[17] = "";
        EXPECT_EQ(call(abecs_cmd_enb, &request, out), ABECS_RSP_STAT_ST_OK);
        return out;
    }

    // The first clear PIN block of the PIN 12345, typed for this card number as it is sent.
    std::string pin_block(const std::string& pan) {
        AbecsCmdGpnCmdData request{ABECS_CMD_GPN_METHOD_DUKPT_TDES, 0, "", "", 1, {{4, 12, "PIN"}}};
        pan.copy(request.pan, sizeof request.pan);
        AbecsCmdGpnRspData out{};
        begin("GPN", Gestures().type("12345"), abecs_cmd_gpn, &request);
        EXPECT_EQ(call(abecs_cmd_gpn_response, &out, nullptr), ABECS_RSP_STAT_ST_OK);
        return tdes_decipher(kPinKeys[0], from_digits(out.pinBlk));
    }
};

std::string session_name(bool secure) { return secure ? "Encrypted" : "Plain"; }

class Keys : public KeysTest, public testing::WithParamInterface<bool> {
protected:
    void SetUp() override { open(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(In, Keys, testing::Bool(), [](const auto& test) { return session_name(test.param); });

TEST_P(Keys, EnbEnciphersABlockUnderTheWorkingKey) {
    for (const auto& [type, key] : {std::pair(ABECS_MK_TYPE_DES, kDes), {ABECS_MK_TYPE_TDES, kTdes}}) {
        EXPECT_EQ(tdes_decipher(key, from_digits(enb(type, "0123456789abcdef"))), "0123456789ABCDEF"_hex);
        // A block that begins like the filling of its field comes without what is taken for that.
        const std::string clear = digits_of(tdes_decipher(key, "30 30 46 DF 67 41 E1 E2"_hex));
        EXPECT_EQ(enb(type, clear.c_str()), "46DF6741E1E2");
    }
}

TEST_P(Keys, EbxEnciphersDataByEachMethod) {
    const std::string data = "0011223344556677 8899AABBCCDDEEFF 0011223344556677"_hex;
    const struct {
        AbecsSpeMthdDat_E method;
        std::string workingKey;
        std::string key;
        bool chained;
        const char* ksn;
    } rows[] = {
        {ABECS_SPE_MTHD_DAT_MK_WK_DES_ECB, kEncipheredDes, kDes, false, ""},
        {ABECS_SPE_MTHD_DAT_MK_WK_DES_CBC, kEncipheredDes, kDes, true, ""},
        {ABECS_SPE_MTHD_DAT_MK_WK_TDES_ECB, kEncipheredTdes, kTdes, false, ""},
        {ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC, kEncipheredTdes, kTdes, true, ""},
        {ABECS_SPE_MTHD_DAT_DUKPT_DAT1_ECB, "", "E806579543A7C401 E806579543A7C401"_hex, false, "FFFF9876543210E00001"},
        {ABECS_SPE_MTHD_DAT_DUKPT_DAT3_ECB, "", kDataKeys[0], false, "FFFF9876543210E00001"},
        {ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC, "", kDataKeys[1], true, "FFFF9876543210E00002"},
    };
    for (const auto& row : rows) {
        AbecsCmdEbxBuilder* builder = abecs_cmd_ebx_builder_new(bytes(data), data.size(), row.method, 0);
        if (!row.workingKey.empty()) {
            EXPECT_NO_RAISE(abecs_cmd_ebx_builder_wkenc(builder, bytes(row.workingKey), row.workingKey.size()));
        }
        if (row.chained) { EXPECT_NO_RAISE(abecs_cmd_ebx_builder_ivcbc(builder, bytes(kVector))); }
        EXPECT_EQ(call(abecs_cmd_ebx, builder, items_), ABECS_RSP_STAT_ST_OK);
        abecs_cmd_ebx_builder_delete(&builder);
        EXPECT_EQ(tdes_decipher(row.key, item(ABECS_RSP_DATID_PP_DATAOUT), row.chained ? kVector : ""), data)
            << row.method;
        EXPECT_EQ(digits_of(item(ABECS_RSP_DATID_PP_KSN)), row.ksn);
    }
}

class PanKey : public KeysTest, public testing::WithParamInterface<std::tuple<bool, AbecsWkPanType_E>> {
protected:
    void SetUp() override { open(secure_); }

    int32_t load(AbecsWkPan* out, bool setOnLink) {
        if (type_ == ABECS_WK_PAN_TYPE_TDES_RSA) { return call(abecs_cmd_dwk2, out, setOnLink); }
        const AbecsMk mk = master(type_ == ABECS_WK_PAN_TYPE_DES ? ABECS_MK_TYPE_DES : ABECS_MK_TYPE_TDES);
        return call(abecs_cmd_dwk1, &mk, out, setOnLink);
    }

    // The PIN pad has the same key: it undoes what the host does to a block and to a card number.
    void expect_shared(const AbecsWkPan& key) {
        EXPECT_EQ(key.type, type_);
        char data[17] = "";
        EXPECT_NO_RAISE(abecs_cmd_enb_encode_data("0123456789ABCDEF", &key, data));
        EXPECT_EQ(tdes_decipher(kTdes, from_digits(enb(ABECS_MK_TYPE_TDES, data))), "0123456789ABCDEF"_hex);
        const std::string pan = abecs_pan_encrypt("4111111111111111", &key);
        EXPECT_NE(pan, "4111111111111111");
        EXPECT_EQ(pin_block(pan), "0512254EEEEEEEEE"_hex);
    }

    static Card card_of(const std::string& pan) {
        return {.pan = pan,
                .track1 = "B" + pan + "^DOE/JOHN^3012101",
                .track2 = pan + "=30121010000000000",
                .track3 = "01" + pan + "==724724000000000030300100000000000000=1=0"};
    }

    AbecsCmdGcrResponse swiped(const Card& card) {
        AbecsCmdGcrResponse out{};
        pinPad_.when("GCR", Gestures().swipe(card));
        EXPECT_NO_RAISE(abecs_cmd_gcr_empty(link_));
        EXPECT_EQ(call(abecs_cmd_gcr_response, &out, nullptr), ABECS_RSP_STAT_ST_OK);
        return out;
    }

    template <typename Read>
    static void expect_tracks(const Read& read, const Card& card) {
        EXPECT_EQ(read.track1, card.track1);
        EXPECT_EQ(read.track2, card.track2);
        EXPECT_EQ(read.track3, card.track3);
    }

    void expect_clear_tracks(const std::string& pan) {
        const Card card = card_of(pan);
        AbecsCmdCkeOut out{};
        begin("CKE", Gestures().swipe(card), abecs_cmd_cke, false, true, ABECS_CMD_CKE_ICC_CHECK_TYPE_0,
              ABECS_CMD_CKE_CTLS_CHECK_TYPE_NOT_SENT);
        EXPECT_EQ(call(abecs_cmd_cke_response, &out, nullptr), ABECS_RSP_STAT_ST_OK);
        expect_tracks(out, card);
        const AbecsCmdGcrResponse read = swiped(card);
        expect_tracks(read, card);
        EXPECT_EQ(read.pan, pan);
    }

    // In the layout of protected mode, for the application to decipher.
    void expect_enciphered_tracks(const AbecsWkPan& key) {
        const Card card = card_of("4222222222222");
        const AbecsCmdGcrResponse read = swiped(card);
        EXPECT_NE(read.track2, card.track2);
        EXPECT_EQ(abecs_pan_decrypt_track(read.track1, &key), card.track1);
        EXPECT_EQ(abecs_pan_decrypt_track(read.track2, &key), card.track2);
        EXPECT_EQ(abecs_pan_decrypt_track(read.track3, &key), card.track3);
        EXPECT_EQ(abecs_pan_decrypt_track(read.pan, &key), card.pan);
    }

    void expect_marks(bool panProtected, bool panKeyInstalled) {
        EXPECT_EQ(link_->panProtected, panProtected);
        EXPECT_EQ(link_->panKeyInstalled, panKeyInstalled);
    }

    const bool secure_ = std::get<0>(GetParam());
    const AbecsWkPanType_E type_ = std::get<1>(GetParam());
};

std::string pan_key_name(const testing::TestParamInfo<PanKey::ParamType>& test) {
    const std::array types{"Des", "Tdes", "TdesOverRsa"};
    return session_name(std::get<0>(test.param)) + types.at(static_cast<size_t>(std::get<1>(test.param)));
}

INSTANTIATE_TEST_SUITE_P(In, PanKey,
                         testing::Combine(testing::Bool(),
                                          testing::Values(ABECS_WK_PAN_TYPE_DES, ABECS_WK_PAN_TYPE_TDES,
                                                          ABECS_WK_PAN_TYPE_TDES_RSA)),
                         pan_key_name);

TEST_P(PanKey, OnTheLinkServesUntilTheSessionEnds) {
    AbecsWkPan key{};
    EXPECT_EQ(load(&key, true), ABECS_RSP_STAT_ST_OK);
    expect_marks(true, true);
    EXPECT_EQ(link_->wkPanType, key.type);
    EXPECT_TRUE(std::equal(std::begin(key.key), std::end(key.key), link_->wkPanKey.begin()));
    expect_shared(key);
    for (const char* pan : {"4111111111111111", "4222222222222", "6799990100000000019"}) { expect_clear_tracks(pan); }
    AbecsWkPan next{};
    EXPECT_EQ(load(&next, true), ABECS_RSP_STAT_ST_OK);
    EXPECT_FALSE(std::equal(std::begin(key.key), std::end(key.key), std::begin(next.key)));
    expect_clear_tracks("4111111111111111");
    EXPECT_EQ(call(abecs_cmd_clo, nullptr), ABECS_RSP_STAT_ST_OK);
    expect_marks(false, false);
    expect_clear_tracks("4111111111111111");
    EXPECT_FALSE(retire().panKey.has_value());
}

// The bytes of an encrypted session's key go with the link's own, so a new session has to follow.
TEST_P(PanKey, OfTheApplicationAloneIsSharedToo) {
    EXPECT_EQ(load(nullptr, true), ABECS_RSP_STAT_ST_OK);
    AbecsWkPan key{};
    EXPECT_EQ(load(&key, false), ABECS_RSP_STAT_ST_OK);
    expect_marks(type_ != ABECS_WK_PAN_TYPE_TDES_RSA, false);
    EXPECT_EQ(link_->keySet, secure_);
    EXPECT_EQ(link_->key, decltype(link_->key){});
    if (secure_) { open(true); }
    expect_shared(key);
    if (type_ != ABECS_WK_PAN_TYPE_TDES_RSA) { expect_enciphered_tracks(key); }
    const Bytes used(key.key, key.key + (type_ == ABECS_WK_PAN_TYPE_DES ? 8 : 16));
    EXPECT_EQ(retire().panKey, used);
}

}  // namespace
