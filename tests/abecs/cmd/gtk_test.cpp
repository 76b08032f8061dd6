// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gtk.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "tests/abecs/cmd/card_command.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;
using Builder = AbecsCmdGtkBuilder;

const uint8_t kVector[] = {0x16, 0x17, 0x13, 0, 1, 2, 3, 0xFF};
const std::string kModulus(256, '\xA7');
const uint8_t* const kModulusBytes = reinterpret_cast<const uint8_t*>(kModulus.data());
const AbecsCmdGtkPbkExp kExponent{3, {1, 0, 1}};

AbecsCmdGtkWkEnc working_key(uint32_t size) { return {size, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}}; }

struct Method {
    int32_t number;
    const char* name;
    const char* digits;
    bool keyIdx;
    uint32_t wkEncSize;
    bool ivCbc;
    bool publicKey;

    [[nodiscard]] AbecsSpeMthdDat_E value() const { return static_cast<AbecsSpeMthdDat_E>(number); }
};

constexpr Method kMethods[] = {
    {0, "ABECS_SPE_MTHD_DAT_MK_WK_DES_ECB", "00", true, 8, false, false},
    {1, "ABECS_SPE_MTHD_DAT_MK_WK_DES_CBC", "01", true, 8, true, false},
    {10, "ABECS_SPE_MTHD_DAT_MK_WK_TDES_ECB", "10", true, 16, false, false},
    {11, "ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC", "11", true, 16, true, false},
    {30, "ABECS_SPE_MTHD_DAT_DUKPT_DAT1_ECB", "30", true, 0, false, false},
    {50, "ABECS_SPE_MTHD_DAT_DUKPT_DAT3_ECB", "50", true, 0, false, false},
    {51, "ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC", "51", true, 0, true, false},
    {90, "ABECS_SPE_MTHD_DAT_TDES_RANDOM_ECB", "90", false, 0, false, true},
    {91, "ABECS_SPE_MTHD_DAT_TDES_RANDOM_CBC", "91", false, 0, true, true},
};

class Gtk : public support::Built<Builder, abecs_cmd_gtk_builder_delete> {
protected:
    Gtk() { builder_ = abecs_cmd_gtk_builder_new(); }

    template <typename... Parameters>
    void set_or_refused(bool taken, const std::string& refusal, void (*setter)(Builder*, Parameters...),
                        std::type_identity_t<Parameters>... arguments) {
        if (taken) { return set(setter, arguments...); }
        refused(3, refusal, setter, arguments...);
    }

    void incomplete(const std::string& detail) {
        const AbecsRspParamValue old{};
        EXPECT_NO_RAISE(abecs_rsp_param_map_put(map_.get(), 1, &old, false));
        Link link;
        EXPECT_REFUSED(2, detail, abecs_cmd_gtk(link.comm, builder_, map_.get()));
        EXPECT_EQ(map_.items().size(), 1U) << "untouched";
    }

    // Sent twice, because sending leaves the builder as it was.
    void expect_sent(const std::string& request, support::Peer::Where where = {}) {
        for (int i = 0; i < 2; ++i) {
            Link link;
            link.peer.request("GTK" + request, where).response("GTK000");
            EXPECT_EQ(link.call(abecs_cmd_gtk, where)(builder_, map_.get()), 0);
        }
    }
};

TEST_F(Gtk, SendsWhatWasSetInTheOrderOfTheCalls) {
    expect_sent("");
    set(abecs_cmd_gtk_builder_tracks, "1110");
    expect_sent("008" + "0007 0004"_hex + "1110");
    const AbecsCmdGtkWkEnc key = working_key(16);
    set(abecs_cmd_gtk_builder_opn_dig, 8);
    set(abecs_cmd_gtk_builder_mthd_dat, ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC);
    set(abecs_cmd_gtk_builder_iv_cbc, kVector);
    set(abecs_cmd_gtk_builder_wk_enc, &key);
    set(abecs_cmd_gtk_builder_key_idx, 99);
    expect_sent("057" + "0007 0004"_hex + "1110" + "0008 0001"_hex + "8" + "0003 0002"_hex + "11"
                + "001D 0008 16171300010203FF 000A 0010 000102030405060708090A0B0C0D0E0F 0009 0002"_hex + "99");
}

// Together with what it needs to be sent. A chain may also start from the PIN pad's own block.
TEST_F(Gtk, TakesWithEachMethodWhatItUses) {
    for (const Method& method : kMethods) {
        const auto unused = [&](const char* rest) {
            return std::string("SPE_MTHDDAT (") + method.name + ") does not " + rest;
        };
        const auto missing = [&](bool needed, const char* name) {
            if (needed) { incomplete(std::string("Missing ") + name + " (SPE_MTHDDAT: " + method.name + ")"); }
        };
        const AbecsCmdGtkWkEnc key = working_key(method.wkEncSize);
        const bool random = method.publicKey;
        const bool exponentFirst = random && method.ivCbc;
        const std::string modulus = "0024 0100"_hex + kModulus;
        const std::string exponent = "0025 0003 010001"_hex;
        set(abecs_cmd_gtk_builder_reset);
        set(abecs_cmd_gtk_builder_mthd_dat, method.value());
        missing(method.keyIdx, "SPE_KEYIDX");
        set_or_refused(method.keyIdx, unused("use SPE_KEYIDX"), abecs_cmd_gtk_builder_key_idx, 7);
        missing(method.wkEncSize != 0, "SPE_WKENC");
        set_or_refused(method.wkEncSize != 0, unused("uses SPE_WKENC"), abecs_cmd_gtk_builder_wk_enc, &key);
        missing(random, "SPE_PBKMOD");
        if (exponentFirst) {
            set(abecs_cmd_gtk_builder_pbk_exp, &kExponent);
            missing(random, "SPE_PBKMOD");
        }
        set_or_refused(random, unused("use SPE_not SPE_PBKMOD"), abecs_cmd_gtk_builder_pbk_mod, kModulusBytes);
        if (!exponentFirst) {
            missing(random, "SPE_PBKEXP");
            set_or_refused(random, unused("use SPE_not SPE_PBKEXP"), abecs_cmd_gtk_builder_pbk_exp, &kExponent);
        }
        std::string request = "0003 0002"_hex + method.digits;
        if (method.keyIdx) { request += "0009 0002"_hex + "07"; }
        if (method.wkEncSize == 8) { request += "000A 0008 0001020304050607"_hex; }
        if (method.wkEncSize == 16) { request += "000A 0010 000102030405060708090A0B0C0D0E0F"_hex; }
        if (random) { request += exponentFirst ? exponent + modulus : modulus + exponent; }
        expect_sent((random ? "" : "0") + std::to_string(request.size()) + request);
        set_or_refused(method.ivCbc, unused("uses SPE_IVCBC"), abecs_cmd_gtk_builder_iv_cbc, kVector);
        if (method.ivCbc) { request += "001D 0008 16171300010203FF"_hex; }
        expect_sent((random ? "" : "0") + std::to_string(request.size()) + request);
    }
}

TEST_F(Gtk, ChecksEveryArgumentInOrder) {
    const char* const notYet = "SPE_MTHDDAT not set yet";
    refused(3, notYet, abecs_cmd_gtk_builder_iv_cbc, nullptr);
    refused(3, notYet, abecs_cmd_gtk_builder_key_idx, 100);
    refused(3, notYet, abecs_cmd_gtk_builder_wk_enc, nullptr);
    refused(3, notYet, abecs_cmd_gtk_builder_pbk_mod, nullptr);
    refused(3, notYet, abecs_cmd_gtk_builder_pbk_exp, nullptr);
    refused(2, "'tracks' is NULL", abecs_cmd_gtk_builder_tracks, nullptr);
    const std::string length = "Invalid length for 'tracks' (expected: 4, requested: ";
    refused(2, length + "3)", abecs_cmd_gtk_builder_tracks, "11x");
    refused(2, length + "5)", abecs_cmd_gtk_builder_tracks, "11111");
    refused(2, "SPE_TRACKS: Invalid N field", abecs_cmd_gtk_builder_tracks, "111:");
    for (const int32_t number : {-1, 2, 9, 12, 29, 31, 52, 89, 92, 256, INT32_MIN}) {
        refused(2, "Invalid enumerator for AbecsSpeMthdDat_E: " + std::to_string(number),
                abecs_cmd_gtk_builder_mthd_dat, static_cast<AbecsSpeMthdDat_E>(number));
    }
    for (const int32_t digits : {-2, 1, 3, 5, 7, 9, 10, INT32_MIN}) {
        refused(2, "Invalid enumerator for SPE_OPNDIG: " + std::to_string(digits), abecs_cmd_gtk_builder_opn_dig,
                digits);
    }
    set(abecs_cmd_gtk_builder_mthd_dat, ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC);
    refused(2, "'ivCbc' is NULL", abecs_cmd_gtk_builder_iv_cbc, nullptr);
    refused(2, "Invalid key index (max: 99, requested: 100)", abecs_cmd_gtk_builder_key_idx, 100);
    refused(2, "'wkEnc' is NULL", abecs_cmd_gtk_builder_wk_enc, nullptr);
    const AbecsCmdGtkWkEnc shortKey = working_key(8);
    const AbecsCmdGtkWkEnc longKey = working_key(16);
    refused(2, "Invalid size of SPE_WKENC (expected: 16, requested: 8)", abecs_cmd_gtk_builder_wk_enc, &shortKey);
    set(abecs_cmd_gtk_builder_reset);
    set(abecs_cmd_gtk_builder_mthd_dat, ABECS_SPE_MTHD_DAT_MK_WK_DES_ECB);
    refused(2, "Invalid size of SPE_WKENC (expected: 8, requested: 16)", abecs_cmd_gtk_builder_wk_enc, &longKey);
    set(abecs_cmd_gtk_builder_reset);
    set(abecs_cmd_gtk_builder_mthd_dat, ABECS_SPE_MTHD_DAT_TDES_RANDOM_CBC);
    refused(2, "'pbkMod' is NULL", abecs_cmd_gtk_builder_pbk_mod, nullptr);
    refused(2, "'pbkExp' is NULL", abecs_cmd_gtk_builder_pbk_exp, nullptr);
    const AbecsCmdGtkPbkExp longExponent{4, {}};
    refused(2, "Invalid size for SPE_PBKEXP (max: 3, requested: 4)", abecs_cmd_gtk_builder_pbk_exp, &longExponent);
    const AbecsCmdGtkPbkExp noExponent{};
    set(abecs_cmd_gtk_builder_pbk_exp, &noExponent);
    Link link;
    const AbecsRspParamValue old{};
    abecs_rsp_param_map_put(map_.get(), 1, &old, false);
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_gtk(nullptr, builder_, map_.get()));
    EXPECT_REFUSED(2, "'builder' is NULL", abecs_cmd_gtk(link.comm, nullptr, map_.get()));
    EXPECT_EQ(map_.items().size(), 1U) << "untouched";
    EXPECT_REFUSED(2, "'out' is NULL", abecs_cmd_gtk(link.comm, builder_, nullptr));
}

TEST_F(Gtk, TakesEachParameterOnce) {
    set(abecs_cmd_gtk_builder_tracks, "0289");
    set(abecs_cmd_gtk_builder_opn_dig, 0);
    set(abecs_cmd_gtk_builder_mthd_dat, ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC);
    set(abecs_cmd_gtk_builder_key_idx, 0);
    refused(3, "SPE_TRACKS already set", abecs_cmd_gtk_builder_tracks, "1110");
    refused(3, "SPE_OPNDIG already set", abecs_cmd_gtk_builder_opn_dig, 4);
    refused(3, "SPE_MTHDDAT already set", abecs_cmd_gtk_builder_mthd_dat, ABECS_SPE_MTHD_DAT_TDES_RANDOM_CBC);
    refused(3, "SPE_KEYIDX already set", abecs_cmd_gtk_builder_key_idx, 6);
    expect_sent("025" + "0007 0004"_hex + "0289" + "0008 0001"_hex + "0" + "0003 0002"_hex + "51" + "0009 0002"_hex
                + "00");
    set(abecs_cmd_gtk_builder_reset);
    refused(3, "SPE_MTHDDAT not set yet", abecs_cmd_gtk_builder_key_idx, 5);
}

TEST_F(Gtk, LeavesTheItemsOfTheAnswerInTheMap) {
    set(abecs_cmd_gtk_builder_tracks, "0100");
    const std::string request = "GTK008" + "0007 0004"_hex + "0100";
    const auto emptied = [&](const std::string& response, int32_t expected, const support::Raised& error) {
        Link link;
        link.peer.request(request).response("GTK000015" + "8045 0004 41110000 8048 0003 303031"_hex);
        EXPECT_EQ(link.call(abecs_cmd_gtk)(builder_, map_.get()), 0);
        EXPECT_EQ(map_.items(), (support::ParamMap::Items{{0x8045, "41110000"_hex}, {0x8048, "001"}}));
        link.peer.request(request).response(response);
        int32_t stat = 0;
        EXPECT_EQ(support::raised_by([&] { stat = abecs_cmd_gtk(link.comm, builder_, map_.get()); }), error);
        EXPECT_EQ(stat, expected);
        EXPECT_EQ(map_.items(), support::ParamMap::Items{});
    };
    emptied("GTK042", 42, {});
    emptied("GTX000", 0, support::error(12, "(GTK) Invalid RSP_ID: GTX)"));
    emptied("GTK000004" + "8045 001C"_hex, 0,
            support::error(12, "Malformed parameter (expected data length: 28, available: 0)"));
}

template <typename Out>
void expect_reads(uint16_t id, uint32_t capacity, const std::string& name,
                  Out* (*read)(const AbecsRspParamMap*, Out*)) {
    const support::ParamMap map;
    std::string bytes(capacity + 1, '\x5A');
    Out out;
    std::memset(&out, 0xEE, sizeof out);
    const auto put = [&](uint32_t size) {
        const AbecsRspParamValue value{size, size != 0 ? reinterpret_cast<uint8_t*>(bytes.data()) : nullptr, false};
        EXPECT_NO_RAISE(abecs_rsp_param_map_put(map.get(), id, &value, false));
    };
    EXPECT_RAISES(2, "'out' is NULL", read(map.get(), nullptr));
    EXPECT_EQ(read(map.get(), &out), nullptr) << name;
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&out), sizeof out), std::string(sizeof out, '\xEE')) << name;
    put(capacity + 1);
    const std::string tooLong = "'Parameter size violation for " + name + " (size: " + std::to_string(capacity + 1)
                                + ", max: " + std::to_string(capacity) + ")";
    EXPECT_RAISES(12, tooLong, read(map.get(), &out));
    EXPECT_EQ(out.size, capacity + 1) << name;
    EXPECT_EQ(out.data[0], 0xEE) << name;
    put(capacity);
    EXPECT_EQ(read(map.get(), &out), &out) << name;
    EXPECT_EQ(std::string(out.data, out.data + out.size), bytes.substr(1)) << name;
    put(0);
    EXPECT_EQ(read(map.get(), &out), &out) << name;
    EXPECT_EQ(out.size, 0U) << name;
    put(capacity + 1);
    const support::ReturningRaises handler;
    EXPECT_EQ(read(map.get(), &out), nullptr) << name;
    EXPECT_EQ(handler.all(), support::errors(12, {tooLong.c_str()}));
}

TEST(GtkResponse, ReadsEachItemUpToItsCapacity) {
    expect_reads(0x804A, 16, "ABECS_RSP_DATID_PP_ENCPAN", abecs_cmd_gtk_response_enc_pan);
    expect_reads(0x8044, 88, "ABECS_RSP_DATID_PP_TRACK1", abecs_cmd_gtk_response_track1);
    expect_reads(0x8045, 28, "ABECS_RSP_DATID_PP_TRACK2", abecs_cmd_gtk_response_track2);
    expect_reads(0x8046, 60, "ABECS_RSP_DATID_PP_TRACK3", abecs_cmd_gtk_response_track3);
    expect_reads(0x8047, 10, "ABECS_RSP_DATID_PP_TRK1KSN", abecs_cmd_gtk_response_trk1_ksn);
    expect_reads(0x8048, 10, "ABECS_RSP_DATID_PP_TRK2KSN", abecs_cmd_gtk_response_trk2_ksn);
    expect_reads(0x8049, 10, "ABECS_RSP_DATID_PP_TRK3KSN", abecs_cmd_gtk_response_trk3_ksn);
    expect_reads(0x804B, 10, "ABECS_RSP_DATID_PP_ENCPANKSN", abecs_cmd_gtk_response_enc_pan_ksn);
    expect_reads(0x8063, 256, "ABECS_RSP_DATID_PP_ENCKRAND", abecs_cmd_gtk_response_enc_krand);
}

}  // namespace
