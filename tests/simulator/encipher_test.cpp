// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/simulator/fixture.h"
#include "wire/hex.h"

// The clear working key is 11223344556677889900AABBCCDDEEFF; what is enciphered was worked out with the openssl
// program.
using namespace quorvel::sim;

namespace {

const std::string kMethod = "0003 0002"_hex;
const std::string kIndex = "0009 0002"_hex + "00";

using EncipherTest = PinPadTest;

TEST_F(EncipherTest, EnbNeedsItsKeyAndItsLayout) {
    play();
    // The same key, sent as the 8 bytes that it is.
    call("ENB0510003030303030303030B4CC3FD9D8D952144111111111111111", "ENB0000167CC310657070D8A3");
    call("ENB051199ECAA54F11CEDC5178BE0FB560E8C43F04111111111111111", "ENB042");
    refuse("011", Kind::kLayout,
           {{"ENB051200ECAA54F11CEDC5178BE0FB560E8C43F04111111111111111", "ENB: ENB_METHOD: 2 is not from 0 to 1"}});
}

TEST_F(EncipherTest, EbxChainsFromZerosAndCountsItsKeyByItself) {
    play();
    const std::string head = "000F 0010 00112233445566778899AABBCCDDEEFF 0003 0002"_hex;
    call("EBX044" + head + "01" + kIndex + "000A 0008 B4CC3FD9D8D95214"_hex,
         "EBX000020" + "804E 0010 4F9C3608AC9449664690F05F74FCEECF"_hex);
    call("EBX032" + head + "50" + kIndex,
         "EBX000034" + "804E 0010 A8356B9FB799703294165C23E1ACCD22 804C 000A FFFF9876543210E00001"_hex);
    call("EBX032" + head + "50" + "0009 0002"_hex + "01", "EBX042");
    // The first query for PIN keys knows nothing of the data key's counter.
    call("GIX006" + "0001 0002 9200"_hex, "GIX000014" + "9200 000A FFFF9876543210E00001"_hex);
    call("GDU003300", "GDU000020FFFF9876543210E00000");
    call("GDU003399", "GDU042");
    refuse("011", Kind::kLayout, {{"GDU003100", "GDU: GDU_METHOD: 1 is not from 2 to 3"}});
}

TEST_F(EncipherTest, EbxTakesExactlyWhatItsMethodNeeds) {
    play();
    const std::string data = "000F 0008 0011223344556677"_hex;
    const std::string des = "000A 0008 B4CC3FD9D8D95214"_hex;
    const std::string vector = "001D 0008 A1B2C3D4E5F60718"_hex;
    refuse("019", Kind::kLayout,
           {{"EBX012" + data, "EBX: SPE_MTHDDAT is missing"},
            {"EBX012" + kMethod + "50" + kIndex, "EBX: SPE_DATAIN is missing"},
            {"EBX018" + data + kMethod + "50", "EBX: SPE_KEYIDX is missing"},
            {"EBX024" + data + kMethod + "11" + kIndex, "EBX: SPE_WKENC is missing"}});
    refuse("011", Kind::kLayout,
           {{"EBX036" + data + kMethod + "10" + kIndex + des, "SPE_WKENC: 8 bytes"},
            {"EBX036" + data + kMethod + "50" + kIndex + des, "EBX: SPE_WKENC 0x000A has no place in it"},
            {"EBX036" + data + kMethod + "50" + kIndex + vector, "EBX: SPE_IVCBC 0x001D has no place in it"},
            {"EBX030" + data + kMethod + "50" + kIndex + kIndex, "EBX: SPE_KEYIDX 0x0009 has no place in it"},
            {"EBX024" + data + kMethod + "05" + kIndex, "SPE_MTHDDAT: there is no method 05"},
            {"EBX024" + data + kMethod + "90" + kIndex, "EBX: SPE_KEYIDX 0x0009 has no place in it"},
            {"EBX017" + "000F 0001 00"_hex + kMethod + "50" + kIndex, "SPE_DATAIN: 1 bytes"},
            {"EBX009" + "0007 0005"_hex + "01110", "EBX: SPE_TRACKS 0x0007 has no place in it"}});
}

TEST_F(EncipherTest, GtkTakesExactlyWhatItsMethodNeeds) {
    const std::string tracks = "0007 0004"_hex + "1110";
    const std::string track2AndPan = "0007 0004"_hex + "0101";
    const std::string modulus = "0024 0100"_hex + std::string(256, '\xFF');
    Device device;
    device.lastCard = Card{.pan = "4111111111111111"};
    play(device);
    call("GTK008" + tracks, "GTK000");
    call("GTK020" + track2AndPan + kIndex + kMethod + "50", "GTK042");
    refuse("019", Kind::kLayout,
           {{"GTK", "GTK: SPE_TRACKS is missing"},
            {"GTK008" + track2AndPan, "GTK: SPE_MTHDDAT is missing for the card number"},
            {"GTK274" + tracks + kMethod + "90" + modulus, "GTK: SPE_PBKEXP is missing"}});
    refuse("011", Kind::kLayout,
           {{"GTK008" + "0007 0004"_hex + "1120", "SPE_TRACKS: digits other than 0 and 1"},
            {"GTK013" + tracks + "0008 0001"_hex + "3", "SPE_OPNDIG: an odd number"},
            {"GTK014" + tracks + kIndex, "GTK: SPE_KEYIDX 0x0009 has no place in it"},
            {"GTK024" + tracks + kMethod + "90" + "0024 0002 FFFF 0025 0000"_hex, "SPE_PBKMOD: 2 bytes"},
            {"GTK016" + tracks + tracks, "GTK: SPE_TRACKS 0x0007 has no place in it"}});
}

// Loads 0F1E2D3C4B5A69788796A5B4C3D2E1F0. From then on data come in deciphered under it, until the session ends.
TEST_F(EncipherTest, DwkTakesAKeyUnderAMasterKey) {
    const std::string enb = "ENB051101ECAA54F11CEDC5178BE0FB560E8C43F0";
    const std::string tdes = "DWK0361100BDBE59C77CF56415BAB6EAD19B49AD8C";
    play();
    call(tdes, "DWK000");
    call(enb + "5D3D5A8E5C5A5D12", "ENB00001646DF6741E1E2B68C");
    call("DWK0361000F9DD498AF884A97FA20E328C39686F3E", "DWK000");
    call("DWK0361199BDBE59C77CF56415BAB6EAD19B49AD8C", "DWK042");
    call(enb + "6DB95C87A27B8CEC", "ENB00001646DF6741E1E2B68C");
    call("CLO032" + std::string(32, ' '), "CLO000");
    call(enb + "4111111111111111", "ENB00001646DF6741E1E2B68C");
    call(tdes, "DWK000");
    refuse("011", Kind::kLayout,
           {{"DWK0363100BDBE59C77CF56415BAB6EAD19B49AD8C", "DWK: DWK_MODE: 3 is not from 1 to 2"},
            {"DWK0361200BDBE59C77CF56415BAB6EAD19B49AD8C", "DWK: DWK_METHOD: 2 is not from 0 to 1"},
            {"DWK2632" + std::string(256, '7') + "010001", "DWK: DWK_MOD: less than 1024 bits"}});
    EXPECT_EQ(to_hex(retire().panKey.value()), "0F1E2D3C4B5A69788796A5B4C3D2E1F0");
}

}  // namespace
