// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/simulator/fixture.h"
#include "tests/simulator/host_key.h"
#include "wire/hex.h"

// The clear working key is 11223344556677889900AABBCCDDEEFF; what is enciphered was worked out with the openssl
// program.
using namespace quorvel::sim;

namespace {

const std::string kMethod = "0003 0002"_hex;
const std::string kIndex = "0009 0002"_hex + "00";
const std::string kVector = "001D 0008 A1B2C3D4E5F60718"_hex;

using EncipherTest = PinPadTest;

TEST_F(EncipherTest, EnbNeedsItsKeyAndItsLayout) {
    play();
    // The same key, sent as the 8 bytes that it is.
    call("ENB0510003030303030303030B4CC3FD9D8D952144111111111111111", "ENB0000167CC310657070D8A3");
    call("ENB051199ECAA54F11CEDC5178BE0FB560E8C43F04111111111111111", "ENB042");
    refuse("011", Kind::kLayout,
           {{"ENB051200ECAA54F11CEDC5178BE0FB560E8C43F04111111111111111", "ENB: ENB_METHOD: 2 is not from 0 to 1"}});
}

TEST_F(EncipherTest, EbxEnciphersByEachMethod) {
    const std::string des = kIndex + "000A 0008 B4CC3FD9D8D95214"_hex;
    const std::string tdes = kIndex + "000A 0010 3EB3B72576BBBE83 4F0B96AAA5A8B548"_hex;
    const std::string data = "000F 0010 00112233445566778899AABBCCDDEEFF"_hex + kMethod;
    play();
    for (const auto& [method, key, items] : {
             std::tuple("00", des, "804E 0010 4F9C3608AC944966 82AB5DFF3E6B5E4B"_hex),
             {"01", des, "804E 0010 4F9C3608AC944966 4690F05F74FCEECF"_hex},
             {"01", des + kVector, "804E 0010 C3376CBCEA604ADE A413D8653BA79C37"_hex},
             {"10", tdes, "804E 0010 DE6412A0862BE889 EA1986C6785A09F9"_hex},
             {"11", tdes + kVector, "804E 0010 6FA0C63259F2F14C 9C1F4F0F23189BFA"_hex},
             {"30", kIndex, "804E 0010 067CDF1AFFB18D89 48C80BD37FA343B8 804C 000A FFFF9876543210E00001"_hex},
             {"50", kIndex, "804E 0010 A8356B9FB7997032 94165C23E1ACCD22 804C 000A FFFF9876543210E00001"_hex},
             {"51", kIndex + kVector, "804E 0010 47816350F0CADB0C A7BA8A3AC4C764CB 804C 000A FFFF9876543210E00002"_hex},
         }) {
        const std::string request = data + method + key;
        call(fmt::format("EBX{:03}{}", request.size(), request), fmt::format("EBX000{:03}{}", items.size(), items));
    }
    // The first query for PIN keys knows nothing of the data key's counter.
    call("GIX006" + "0001 0002 9200"_hex, "GIX000014" + "9200 000A FFFF9876543210E00002"_hex);
    call("GDU003300", "GDU000020FFFF9876543210E00000");
    call("GDU003399", "GDU042");
    call("EBX032" + data + "50" + "0009 0002"_hex + "01", "EBX042");
    refuse("011", Kind::kLayout, {{"GDU003100", "GDU: GDU_METHOD: 1 is not from 2 to 3"}});
}

TEST_F(EncipherTest, EbxTakesExactlyWhatItsMethodNeeds) {
    play();
    const std::string data = "000F 0008 0011223344556677"_hex;
    const std::string des = "000A 0008 B4CC3FD9D8D95214"_hex;
    refuse("019", Kind::kLayout,
           {{"EBX012" + data, "EBX: SPE_MTHDDAT is missing"},
            {"EBX012" + kMethod + "50" + kIndex, "EBX: SPE_DATAIN is missing"},
            {"EBX018" + data + kMethod + "50", "EBX: SPE_KEYIDX is missing"},
            {"EBX024" + data + kMethod + "11" + kIndex, "EBX: SPE_WKENC is missing"}});
    refuse("011", Kind::kLayout,
           {{"EBX036" + data + kMethod + "10" + kIndex + des, "SPE_WKENC: 8 bytes"},
            {"EBX036" + data + kMethod + "50" + kIndex + des, "EBX: SPE_WKENC 0x000A has no place in it"},
            {"EBX036" + data + kMethod + "50" + kIndex + kVector, "EBX: SPE_IVCBC 0x001D has no place in it"},
            {"EBX024" + data + kMethod + "05" + kIndex, "SPE_MTHDDAT: there is no method 05"},
            {"EBX024" + data + kMethod + "90" + kIndex, "EBX: SPE_KEYIDX 0x0009 has no place in it"},
            {"EBX017" + "000F 0001 00"_hex + kMethod + "50" + kIndex, "SPE_DATAIN: 1 bytes"},
            {"EBX009" + "0007 0005"_hex + "01110", "EBX: SPE_TRACKS 0x0007 has no place in it"}});
}

const Card kCard{.pan = "4111111111111111",
                 .track1 = "B4111111111111111^DOE/JOHN^301210100000000000",
                 .track2 = "4111111111111111=30121010000000000",
                 .track3 = "014111111111111111==724724000000000030300100000000000000=1=0"};

// Filled up to whole blocks where they are enciphered; the first digits come in clear, where that is asked for.
TEST_F(EncipherTest, GtkBringsTheItemsInClearOrEnciphersEach) {
    const std::string all = "0007 0004"_hex + "1111";
    Device device = Device::standard();
    device.lastCard = kCard;
    play(device);
    call("GTK008" + "0007 0004"_hex + "1110",
         "GTK000104" + "8044 002D"_hex + kCard.track1 + "8045 0011 4111111111111111D30121010000000000"_hex
             + "8046 001E 014111111111111111DD724724000000000030300100000000000000D1D0"_hex);
    call("GTK008" + "0007 0004"_hex + "0100", "GTK000021" + "8045 0011 4111111111111111D30121010000000000"_hex);
    call("GTK049" + all + kMethod + "01" + kIndex + "000A 0008 B4CC3FD9D8D95214"_hex + kVector + "0008 0001"_hex + "8",
         "GTK000144" + "8044 0038"_hex + "41111111"
             + "957745A9A8E8049C3F2E5E9BFD8532D1ED5C3C38F5524010B70545D02EB16835DC318BE2E81206A1FE01CC87E5FFE4E4"_hex
             + "8045 001C 41111111 0011FA28C2A595D2275DA87579CF8AC0C22DFAF34D28D5B3"_hex
             + "8046 0024 41111111 3C1DB727EDC572D6BD24C1FDF240A63DA07C1DE57B552C9F2E9B45CAD14D2C8F"_hex
             + "804A 0008 0011FA28C2A595D2"_hex);
    call("GTK032" + all + kMethod + "51" + kIndex + kVector,
         "GTK000184" + "8044 0030"_hex
             + "32C5D78C811FE3C0406A0CFC01D114DDC049CB6F6711D23F739EA527EB0014694736D17CF7AA70A9D7449918F31CDFF0"_hex
             + "8047 000A FFFF9876543210E00001 8045 0018 3B2B35F68558D3FA96CB7CDC9631FF4EDEEB3FA75E578170"_hex
             + "8048 000A FFFF9876543210E00002"_hex
             + "8046 0020 8828FF754C4138B823D34CE2D1BCC75CDAE994366B62DC0BE5899A5FBA25108C"_hex
             + "8049 000A FFFF9876543210E00003 804A 0008 A06B320EF004A077 804B 000A FFFF9876543210E00004"_hex);
    const HostKey host;
    const std::string publicKey = "0024 0100"_hex + host.modulus() + "0025 0003 010001"_hex;
    for (const auto& [request, vector] :
         {std::pair("GTK281" + "0007 0004"_hex + "0100" + kMethod + "90", ""s),
          {"GTK293" + "0007 0004"_hex + "0100" + kMethod + "91" + kVector, kVector.substr(4)}}) {
        const std::string answer = ask(request + publicKey);
        EXPECT_EQ(answer.substr(0, 13), "GTK000288" + "8045 0018"_hex);
        EXPECT_EQ(answer.substr(37, 4), "8063 0100"_hex);
        const std::string key = host.open_padded(answer.substr(41));
        ASSERT_EQ(key.size(), 16U);
        EXPECT_EQ(tdes_decipher(key, answer.substr(13, 24), vector),
                  "4111111111111111D30121010000000000 FFFFFFFFFFFFFF"_hex);
    }
}

TEST_F(EncipherTest, GtkTakesExactlyWhatItsMethodNeeds) {
    const std::string tracks = "0007 0004"_hex + "1110";
    const std::string track2AndPan = "0007 0004"_hex + "0101";
    const std::string modulus = "0024 0100"_hex + std::string(256, '\xFF');
    play();
    call("GTK008" + tracks, "GTK043");
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
    call("GEN04203037033005D3D5A8E5C5A5D1271065ECF66B7AEF6",
         "GEN000055052FFFF9876543210E00001DCCD4E096CCD9A4FA8356B9FB7997032");
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
