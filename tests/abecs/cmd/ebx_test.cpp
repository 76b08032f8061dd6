// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/ebx.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

#include "tests/abecs/cmd/card_command.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;

constexpr std::array<uint8_t, 264> kData{0x13, 0x16, 0x17, 0x00, 0xFF, 0x12, 0x18, 0x30};
constexpr uint8_t kKey[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
constexpr uint8_t kVector[8] = {0xA1, 0xB2, 0xC3, 0xD4, 0xE5, 0xF6, 0x07, 0x18};

AbecsSpeMthdDat_E method(int32_t value) { return static_cast<AbecsSpeMthdDat_E>(value); }

// The request's first three parameters, with the key at index 5.
std::string head(const char* method) {
    return "000F 0008 13161700FF121830 0003 0002"_hex + method + "0009 0002"_hex + "05";
}

const std::string kVectorParam = "001D 0008 A1B2C3D4E5F60718"_hex;

class Ebx : public support::Built<AbecsCmdEbxBuilder, abecs_cmd_ebx_builder_delete> {
protected:
    Ebx() { builder_ = abecs_cmd_ebx_builder_new(kData.data(), 8, ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC, 5); }

    void reset(int32_t mthdDat) {
        EXPECT_NO_RAISE(abecs_cmd_ebx_builder_reset(builder_, kData.data(), 8, method(mthdDat), 5));
    }

    // Twice, because sending leaves the builder as it was.
    void expect_sent(const std::string& request, support::Peer::Where where = {}) {
        for (int i = 0; i < 2; ++i) {
            Link link;
            link.peer.request(request, where).response("EBX042");
            EXPECT_EQ(link.call(abecs_cmd_ebx, where)(builder_, map_.get()), 42);
        }
    }
};

TEST_F(Ebx, SendsWhatWasSetInTheOrderOfTheCalls) {
    expect_sent("EBX024" + "000F 0008 13161700FF121830 0003 0002 3531 0009 0002 3035"_hex);
    EXPECT_NO_RAISE(abecs_cmd_ebx_builder_reset(builder_, kData.data(), 256, method(11), 99));
    EXPECT_NO_RAISE(abecs_cmd_ebx_builder_ivcbc(builder_, kVector));
    EXPECT_NO_RAISE(abecs_cmd_ebx_builder_wkenc(builder_, kKey, 16));
    expect_sent("EBX304" + "000F 0100 13161700FF121830"_hex + std::string(248, '\0') + "0003 0002"_hex + "11"
                + "0009 0002"_hex + "99" + kVectorParam + "000A 0010 0102030405060708090A0B0C0D0E0F10"_hex);
}

// Which of the two further parameters each method takes; every method that has a working key needs it.
TEST_F(Ebx, TakesWhatItsMethodTakes) {
    const auto wkenc = abecs_cmd_ebx_builder_wkenc;
    const auto ivcbc = abecs_cmd_ebx_builder_ivcbc;
    Link unused;
    const auto takes = [&](int32_t number, const char* digits, const std::string& name, size_t keySize, bool chained) {
        const std::string missing = "Missing parameter SPE_WKENC (required due to SPE_MTHDDAT == " + name + ")";
        const auto incomplete = [&] { EXPECT_REFUSED(3, missing, abecs_cmd_ebx(unused.comm, builder_, map_.get())); };
        const std::string unaccepted = "current SPE_MTHDDAT (" + name + ") does not accept ";
        std::string sent = head(digits);
        reset(number);
        if (keySize == 0) {
            refused(3, unaccepted + "SPE_WKENC", wkenc, nullptr, 0);
        } else {
            const size_t other = 24 - keySize;
            const std::string sizes = std::to_string(other) + " (expected: " + std::to_string(keySize) + ")";
            incomplete();
            refused(2, "'wkEnc' is NULL", wkenc, nullptr, other);
            refused(2, "Invalid 'szWkEnc': " + sizes, wkenc, kKey, other);
            set(wkenc, kKey, keySize);
            refused(3, "SPE_WKENC already set", wkenc, kKey, keySize);
            sent += "000A 00"_hex + static_cast<char>(keySize) + std::string(kKey, kKey + keySize);
        }
        if (chained) {
            refused(2, "'ivCbc' is NULL", ivcbc, nullptr);
            set(ivcbc, kVector);
            refused(3, "SPE_IVCBC already set", ivcbc, kVector);
            sent += kVectorParam;
        } else {
            refused(3, unaccepted + "SPE_IVCBC", ivcbc, nullptr);
        }
        expect_sent("EBX0" + std::to_string(sent.size()) + sent);
        if (keySize != 0) { reset(number), incomplete(); }
    };
    takes(0, "00", "ABECS_SPE_MTHD_DAT_MK_WK_DES_ECB", 8, false);
    takes(1, "01", "ABECS_SPE_MTHD_DAT_MK_WK_DES_CBC", 8, true);
    takes(10, "10", "ABECS_SPE_MTHD_DAT_MK_WK_TDES_ECB", 16, false);
    takes(11, "11", "ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC", 16, true);
    takes(30, "30", "ABECS_SPE_MTHD_DAT_DUKPT_DAT1_ECB", 0, false);
    takes(50, "50", "ABECS_SPE_MTHD_DAT_DUKPT_DAT3_ECB", 0, false);
    takes(51, "51", "ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC", 0, true);
}

// Numbers that are no methods get through until something has to be known about them, which is the error then.
TEST_F(Ebx, RefusesNumbersThatAreNoMethodsWhenItMeetsThem) {
    Link unused;
    for (const int32_t number : {2, 5, 9}) {
        const std::string unhandled = "Unhandled mthdDat: " + std::to_string(number) + "\n";
        reset(number);
        EXPECT_REFUSED(1, "Missing case", abecs_cmd_ebx_builder_wkenc(builder_, kKey, 8));
        EXPECT_REFUSED(1, unhandled, abecs_cmd_ebx_builder_ivcbc(builder_, kVector));
        EXPECT_REFUSED(1, unhandled, abecs_cmd_ebx(unused.comm, builder_, map_.get()));
    }
    reset(12);
    EXPECT_REFUSED(1, "Unhandled mthdDat: 12\n", abecs_cmd_ebx_builder_wkenc(builder_, kKey, 8));
    expect_sent("EBX024" + head("12"));
    const auto reset = abecs_cmd_ebx_builder_reset;
    EXPECT_REFUSED(1, "Unhandled mthdDat: 52\n", reset(builder_, kData.data(), 8, method(52), 100));
    EXPECT_RAISES(2, "'i' (18446744073709551615) is too long (maximum: 9999999999999",
                  reset(builder_, kData.data(), 8, method(-1), 0));
}

TEST_F(Ebx, ChecksEveryArgumentInOrder) {
    const auto wrong = [&](const char* detail, const uint8_t* data, size_t size, int32_t number, uint8_t index) {
        refused(2, detail, abecs_cmd_ebx_builder_reset, data, size, method(number), index);
    };
    const uint8_t* data = kData.data();
    wrong("'data' is NULL", nullptr, 0, 90, 100);
    wrong("Invalid 'szData': 0 (min: 1, max: 256)", data, 0, 90, 100);
    wrong("Invalid 'szData': 257 (min: 1, max: 256)", data, 257, 90, 100);
    wrong("Invalid 'szData': 264 (min: 1, max: 256)", data, 264, 90, 100);
    wrong("Invalid 'szData': 12 (it must be a multiple of 8)", data, 12, 90, 100);
    wrong("Invalid 'szData': 255 (it must be a multiple of 8)", data, 255, 90, 100);
    wrong("Unsupported 'mthdDat': ABECS_SPE_MTHD_DAT_TDES_RANDOM_ECB", data, 8, 90, 100);
    wrong("Unsupported 'mthdDat': ABECS_SPE_MTHD_DAT_TDES_RANDOM_CBC", data, 8, 91, 100);
    wrong("Invalid 'keyIdx': 100 (min: 0, max: 99)", data, 8, 51, 100);
    Link link;
    const AbecsRspParamValue old{};
    abecs_rsp_param_map_put(map_.get(), 1, &old, false);
    EXPECT_REFUSED(2, "'pinpad' is NULL", abecs_cmd_ebx(nullptr, nullptr, map_.get()));
    EXPECT_REFUSED(2, "'builder' is NULL", abecs_cmd_ebx(link.comm, nullptr, map_.get()));
    EXPECT_EQ(map_.items().size(), 1U) << "untouched";
    EXPECT_REFUSED(2, "'out' is NULL", abecs_cmd_ebx(link.comm, builder_, nullptr));
    expect_sent("EBX024" + head("51"));
}

TEST_F(Ebx, CopiesTheAnswerIntoTheMap) {
    const std::string request = "EBX024" + head("51");
    Link link;
    link.peer.request(request).response("EBX000026" + "804E 0008"_hex + "CIPHER\x16\x17" + "804C 000A FF0041"_hex
                                        + "SERIAL0");
    EXPECT_EQ(link.call(abecs_cmd_ebx)(builder_, map_.get()), 0);
    EXPECT_EQ(map_.items(), (support::ParamMap::Items{{0x804E, "CIPHER\x16\x17"}, {0x804C, "FF0041"_hex + "SERIAL0"}}));
    EXPECT_STREQ(abecs_cmd_ebx_response_get_dataout(map_.get()), "CIPHER\x16\x17");
    EXPECT_STREQ(abecs_cmd_ebx_response_get_ksn(map_.get()), "\xFF");

    link.peer.request(request).response("EBX000004" + "804E 0000"_hex);
    EXPECT_EQ(link.call(abecs_cmd_ebx)(builder_, map_.get()), 0);
    EXPECT_STREQ(abecs_cmd_ebx_response_get_dataout(map_.get()), "");
    EXPECT_EQ(abecs_cmd_ebx_response_get_ksn(map_.get()), nullptr);
}

// Each time there is something in the map before.
TEST_F(Ebx, LeavesNothingInTheMapAfterAnythingElse) {
    const AbecsRspParamValue stale{};
    const auto emptied = [&](const support::Raised& error, const std::string& response = "") {
        Link link;
        if (!response.empty()) { link.peer.request("EBX024" + head("51")).response(response); }
        abecs_rsp_param_map_put(map_.get(), 1, &stale, false);
        EXPECT_EQ(support::raised_by([&] { abecs_cmd_ebx(link.comm, builder_, map_.get()); }), error);
        EXPECT_TRUE(map_.items().empty()) << error;
    };
    emptied(support::error(12, "(EBX) Invalid RSP_ID: GTK)"), "GTK000");
    emptied(support::error(6, "Invalid packet (malformed)"), "EBX000012" + "804E 0008"_hex);
    emptied(support::error(12, "Malformed parameter (expected data length: 8, available: 1)"),
            "EBX000005" + "804E 0008"_hex + "C");
    emptied({}, "ERR010");
    reset(0);  // which the map is emptied before
    emptied(support::error(
        3, "Missing parameter SPE_WKENC (required due to SPE_MTHDDAT == ABECS_SPE_MTHD_DAT_MK_WK_DES_ECB)"));
}

}  // namespace
