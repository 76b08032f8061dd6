// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cstring>

#include "tests/e2e/fixture.h"
#include "tests/simulator/host_key.h"

namespace {

using namespace quorvel::sim;
using namespace std::string_literals;

// In clear and, filled up to whole blocks, as they come enciphered.
const std::string kTrack2 = "4111111111111111D30121010000000000"_hex;
const std::string kTrack3 = "014111111111111111DD724724000000000030300100000000000000D1D0"_hex;
const std::string kTrack1Blocks = kCard.track1 + "   ";
const std::string kTrack2Blocks = kTrack2 + "FFFFFFFFFFFFFF"_hex;
const std::string kTrack3Blocks = kTrack3 + "FFFF"_hex;
const std::string kPanBlock = "4111111111111111"_hex;

// The PIN pad tells of nobody's card before it has read one.
class Gtk : public SecureEndToEnd {
protected:
    void SetUp() override {
        SecureEndToEnd::SetUp();
        set("1110");
        ask(ABECS_RSP_STAT_ST_NOCARD);
        swipe(kCard);
    }

    void set(const char* tracks) {
        EXPECT_NO_RAISE(abecs_cmd_gtk_builder_reset(builder_));
        EXPECT_NO_RAISE(abecs_cmd_gtk_builder_tracks(builder_, tracks));
    }
    void set(const char* tracks, AbecsSpeMthdDat_E method, const std::string& vector) {
        set(tracks);
        EXPECT_NO_RAISE(abecs_cmd_gtk_builder_mthd_dat(builder_, method));
        if (!vector.empty()) { EXPECT_NO_RAISE(abecs_cmd_gtk_builder_iv_cbc(builder_, bytes(vector))); }
    }
    void ask(int32_t status = ABECS_RSP_STAT_ST_OK) { EXPECT_EQ(call(abecs_cmd_gtk, builder_, items_), status); }

    // All four, deciphered; the first digits come in clear.
    void expect_items(const std::string& key, const std::string& vector = "", size_t open = 0) {
        const auto opened = [&](const std::string& value, size_t count) {
            return value.substr(0, count) + tdes_decipher(key, value.substr(count), vector);
        };
        EXPECT_EQ(opened(item(abecs_cmd_gtk_response_track1), open), kCard.pan.substr(0, open) + kTrack1Blocks);
        EXPECT_EQ(opened(item(abecs_cmd_gtk_response_track2), open / 2), kPanBlock.substr(0, open / 2) + kTrack2Blocks);
        EXPECT_EQ(opened(item(abecs_cmd_gtk_response_track3), open / 2), kPanBlock.substr(0, open / 2) + kTrack3Blocks);
        EXPECT_EQ(opened(item(abecs_cmd_gtk_response_enc_pan), 0), kPanBlock);
    }

    template <typename Out>
    std::string item(Out* (*read)(const AbecsRspParamMap*, Out*)) {
        Out out{};
        Out* found = nullptr;
        EXPECT_NO_RAISE(found = read(items_, &out));
        return found != nullptr ? std::string(out.data, out.data + out.size) : "";
    }

    Owned<AbecsCmdGtkBuilder, abecs_cmd_gtk_builder_delete> builder_{abecs_cmd_gtk_builder_new()};
};

TEST_F(Gtk, BringsTheTracksInClear) {
    set("1110");
    ask();
    EXPECT_EQ(item(abecs_cmd_gtk_response_track1), kCard.track1);
    EXPECT_EQ(item(abecs_cmd_gtk_response_track2), kTrack2);
    EXPECT_EQ(item(abecs_cmd_gtk_response_track3), kTrack3);
    EXPECT_EQ(item(abecs_cmd_gtk_response_enc_pan), "");
    EXPECT_EQ(item(abecs_cmd_gtk_response_trk2_ksn), "");
    set("0100");
    ask();
    EXPECT_EQ(item(abecs_cmd_gtk_response_track1), "");
}

// The same ciphers as EBX has them.
TEST_F(Gtk, EnciphersUnderAWorkingKey) {
    for (const auto& [method, enciphered, key, vector, openDigits] :
         {std::tuple(ABECS_SPE_MTHD_DAT_MK_WK_DES_CBC, kEncipheredDes, kDes, kVector, 8),
          {ABECS_SPE_MTHD_DAT_MK_WK_TDES_ECB, kEncipheredTdes, kTdes, "", 0}}) {
        AbecsCmdGtkWkEnc workingKey{static_cast<uint32_t>(enciphered.size()), {}};
        std::memcpy(workingKey.data, enciphered.data(), enciphered.size());
        set("1111", method, vector);
        const int32_t open = openDigits;
        EXPECT_NO_RAISE(abecs_cmd_gtk_builder_key_idx(builder_, 0));
        EXPECT_NO_RAISE(abecs_cmd_gtk_builder_wk_enc(builder_, &workingKey));
        EXPECT_NO_RAISE(abecs_cmd_gtk_builder_opn_dig(builder_, open));
        ask();
        expect_items(key, vector, static_cast<size_t>(open));
    }
}

TEST_F(Gtk, EnciphersEachItemAsATransactionOfDukpt) {
    set("1000", ABECS_SPE_MTHD_DAT_DUKPT_DAT3_ECB, "");
    EXPECT_NO_RAISE(abecs_cmd_gtk_builder_key_idx(builder_, 0));
    ask();
    EXPECT_EQ(tdes_decipher(kDataKeys[0], item(abecs_cmd_gtk_response_track1)), kTrack1Blocks);
    EXPECT_EQ(item(abecs_cmd_gtk_response_trk1_ksn), "FFFF9876543210E00001"_hex);
    set("0111", ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC, kVector);
    EXPECT_NO_RAISE(abecs_cmd_gtk_builder_key_idx(builder_, 0));
    ask();
    EXPECT_EQ(tdes_decipher(kDataKeys[1], item(abecs_cmd_gtk_response_track2), kVector), kTrack2Blocks);
    EXPECT_EQ(item(abecs_cmd_gtk_response_trk2_ksn), "FFFF9876543210E00002"_hex);
    EXPECT_EQ(item(abecs_cmd_gtk_response_trk3_ksn), "FFFF9876543210E00003"_hex);
    EXPECT_EQ(item(abecs_cmd_gtk_response_enc_pan).size(), 8U);
    EXPECT_EQ(item(abecs_cmd_gtk_response_enc_pan_ksn), "FFFF9876543210E00004"_hex);
}

TEST_F(Gtk, EnciphersUnderARandomKeyThatComesUnderTheHosts) {
    const HostKey host(2048);
    const std::string modulus = host.modulus();
    const AbecsCmdGtkPbkExp exponent{3, {1, 0, 1}};
    for (const auto& [method, vector] :
         {std::pair(ABECS_SPE_MTHD_DAT_TDES_RANDOM_ECB, ""s), {ABECS_SPE_MTHD_DAT_TDES_RANDOM_CBC, kVector}}) {
        set("1111", method, vector);
        EXPECT_NO_RAISE(abecs_cmd_gtk_builder_pbk_mod(builder_, bytes(modulus)));
        EXPECT_NO_RAISE(abecs_cmd_gtk_builder_pbk_exp(builder_, &exponent));
        ask();
        const std::string key = host.open_padded(item(abecs_cmd_gtk_response_enc_krand));
        ASSERT_EQ(key.size(), 16U);
        expect_items(key, vector);
    }
}

}  // namespace
