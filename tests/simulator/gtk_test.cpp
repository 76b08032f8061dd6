// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <gtest/gtest.h>
#include <string>

#include "tests/simulator/cipher_fixture.h"

using namespace support::literals;

// The clear working key is 11223344556677889900AABBCCDDEEFF; what is enciphered was worked out with the openssl
// program.
namespace quorvel::sim {

namespace {

const std::string track1 = "B4111111111111111^CARDHOLDER/TEST^30121010000000000000";
const std::string track2 = "4111111111111111D30121010000000000"_hex;
const std::string track3 = "014111111111111111DD724724000000000030300100000000000000D1D0"_hex;

const std::string track2AndPan = "0007 0004"_hex + "0101";
const std::string method = "0003 0002"_hex;
const std::string index = "0009 0002"_hex + "00";
const std::string desKey = "000A 0008 B4CC3FD9D8D95214"_hex;
const std::string tdesKey = "000A 0010 3EB3B72576BBBE834F0B96AAA5A8B548"_hex;
const std::string vector = "001D 0008 A1B2C3D4E5F60718"_hex;

class GtkTest : public CipherTest {
protected:
    void SetUp() override {
        Device device = Device::standard();
        device.lastCard = Card{.pan = "4111111111111111",
                               .track1 = track1,
                               .track2 = "4111111111111111=30121010000000000",
                               .track3 = "014111111111111111==724724000000000030300100000000000000=1=0"};
        play({.device = device});
    }
};

TEST_F(GtkTest, GivesTracksInClear) {
    call("GTK008" + "0007 0004"_hex + "1110",
         "GTK000113" + "8044 0036"_hex + track1 + "8045 0011"_hex + track2 + "8046 001E"_hex + track3);
    call("GTK008" + "0007 0004"_hex + "0000", "GTK000");
    expect_findings({});
}

TEST_F(GtkTest, EnciphersByEachMethod) {
    const std::string des = "GTK032" + track2AndPan + index + desKey + method;
    const std::string tdes = "GTK040" + track2AndPan + index + tdesKey + method;
    const std::string answer = "GTK000040" + "8045 0018"_hex;
    call(des + "00", answer + "7CC310657070D8A361D06E211AFE038DB97D5DFE0EF6F1D7 804A 0008 7CC310657070D8A3"_hex);
    call(tdes + "10", answer + "46DF6741E1E2B68CF635A065E760FD099E20942D40369A4D 804A 0008 46DF6741E1E2B68C"_hex);
    call("GTK044" + track2AndPan + index + desKey + method + "01" + vector,
         answer + "0011FA28C2A595D2275DA87579CF8AC0C22DFAF34D28D5B3 804A 0008 0011FA28C2A595D2"_hex);
    call("GTK052" + track2AndPan + index + tdesKey + method + "11" + vector,
         answer + "51E2F80583BF70F56CAFE081AD4429041ACFACBA89CC2202 804A 0008 51E2F80583BF70F5"_hex);
    expect_findings({});
}

// Each of them is a transaction of its own.
TEST_F(GtkTest, EnciphersUnderDukpt) {
    const std::string request = "GTK020" + track2AndPan + index + method;
    const auto answer = [](const std::string& enciphered2, const std::string& ksn2, const std::string& pan,
                           const std::string& ksnPan) {
        return "GTK000068" + "8045 0018"_hex + enciphered2 + "8048 000A FFFF9876543210"_hex + ksn2 + "804A 0008"_hex
               + pan + "804B 000A FFFF9876543210"_hex + ksnPan;
    };
    call(request + "30", answer("3740AE7676FCCE27B5DB0C8D65858AE33AA7D7DCEC62A8E1"_hex, "E00001"_hex,
                                "825ED0881C101922"_hex, "E00002"_hex));
    call(request + "50", answer("DCCD4E096CCD9A4FDAB260BD5B561BFDF2A9F48FA5E35AE3"_hex, "E00001"_hex,
                                "E0DC6FD07D64423B"_hex, "E00002"_hex));
    call("GTK032" + track2AndPan + index + vector + method + "51",
         answer("6173419368ECAC9E2E7C0A43E6A44836AAF6E43062D96913"_hex, "E00003"_hex, "A06B320EF004A077"_hex,
                "E00004"_hex));
    expect_findings({});
}

TEST_F(GtkTest, LeavesFirstDigitsOfTheCardNumberOpen) {
    call("GTK057" + "0007 0004"_hex + "1111" + "0008 0001"_hex + "8" + index + tdesKey + vector + method + "11",
         "GTK000152" + "8044 0040"_hex + "41111111"
             + "8C4B2CD1B6D1688ADC3000A0B11A6C6D7C3400D13A54EC190D45DFEB3D4069D9"
               "D62D6136EDDF66538EC1F3A919BD38176A365BFAE3237655"_hex
             + "8045 001C 41111111 51E2F80583BF70F56CAFE081AD4429041ACFACBA89CC2202"_hex
             + "8046 0024 41111111 2F48B696A2AEA7585C93AC3D07B751930AF00C582454F56FA68642C70B1FAC03"_hex
             + "804A 0008 51E2F80583BF70F5"_hex);
    expect_findings({});
}

TEST_F(GtkTest, TakesExactlyWhatItsMethodNeeds) {
    const std::string tracks = "0007 0004"_hex + "1110";
    const std::string modulus = "0024 0100"_hex + std::string(256, '\xFF');
    refuse("GTK019", Kind::layout,
           {{"GTK", "GTK: SPE_TRACKS is missing"},
            {"GTK008" + track2AndPan, "GTK: SPE_MTHDDAT is missing for the card number"},
            {"GTK020" + tracks + method + "11" + index, "GTK: SPE_WKENC is missing"},
            {"GTK274" + tracks + method + "90" + modulus, "GTK: SPE_PBKEXP is missing"}});
    refuse("GTK011", Kind::layout,
           {{"GTK008" + "0007 0004"_hex + "1120", "SPE_TRACKS: digits other than 0 and 1"},
            {"GTK007" + "0007 0003"_hex + "111", "SPE_TRACKS: digits: 4 bytes due, 3 left"},
            {"GTK013" + tracks + "0008 0001"_hex + "3", "SPE_OPNDIG: an odd number"},
            {"GTK014" + tracks + index, "GTK: SPE_KEYIDX 0x0009 has no place in it"},
            {"GTK020" + tracks + index + method + "90", "GTK: SPE_KEYIDX 0x0009 has no place in it"},
            {"GTK024" + tracks + method + "90" + "0024 0002 FFFF 0025 0000"_hex, "SPE_PBKMOD: 2 bytes"},
            {"GTK016" + tracks + tracks, "GTK: SPE_TRACKS 0x0007 has no place in it"}});
}

TEST_F(CipherTest, GtkNeedsACardAndAKey) {
    Device device;
    play({.device = device});
    call("GTK008" + "0007 0004"_hex + "1110", "GTK043");
    device.lastCard = Card{.pan = "4111111111111111"};
    play({.device = device});
    call("GTK008" + "0007 0004"_hex + "1110", "GTK000");
    call("GTK020" + track2AndPan + index + method + "50", "GTK042");
    expect_findings({});
}

}  // namespace

}  // namespace quorvel::sim
