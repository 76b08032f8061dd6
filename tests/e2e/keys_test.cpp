// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>

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

// Plainly and in an encrypted session.
class Keys : public EndToEnd, public testing::WithParamInterface<bool> {
protected:
    void SetUp() override { EXPECT_EQ(call(abecs_cmd_opn, GetParam()), ABECS_RSP_STAT_ST_OK); }

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
        EXPECT_EQ(tdes_decipher(kTdes, from_digits(enb(ABECS_MK_TYPE_TDES, data))), "0123456789ABCDEF"_hex);
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

    size_t pinBlocks_ = 0;
};

INSTANTIATE_TEST_SUITE_P(In, Keys, testing::Bool());

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
        expect_clear_tracks("4111111111111111");
        SetUp();
    }
    EXPECT_FALSE(retire().panKey.has_value());
}

}  // namespace
