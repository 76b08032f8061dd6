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

const std::string track2AndPan = "0007 0004"_hex + "0101";
const std::string method = "0003 0002"_hex;
const std::string index = "0009 0002"_hex + "00";

class GtkTest : public CipherTest {
protected:
    void SetUp() override {
        Device device = Device::standard();
        device.lastCard = Card{.pan = "4111111111111111"};
        play({.device = device});
    }
};

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
