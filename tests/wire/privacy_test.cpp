// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <gtest/gtest.h>
#include <regex>
#include <set>

#include "tests/support/wire.h"
#include "wire/param_id.h"
#include "wire/tag.h"
#include "wire/words.h"

using namespace support::literals;

using namespace quorvel::wire;

namespace {

const std::string kPan = "4111111111111111";

std::string words(Sender sender, const std::string& packet) {
    return sender == Sender::kHost ? request_words(to_bytes(packet)) : response_words(to_bytes(packet));
}

TEST(Privacy, IsKeptFieldByField) {
    const struct {
        Sender sender;
        std::string packet;
        std::string words;
    } cases[]{
        {Sender::kHost, "GIN00200", "GIN device information: GIN_ACQIDX=\"00\""},
        {Sender::kHost, "GCX028" + "0013 000C"_hex + "000000001000" + "0022 0003"_hex + "986" + "000C 0001 3C"_hex,
         R"(GCX read a card: SPE_AMOUNT="000000001000", SPE_TRNCURR="986", SPE_TIMEOUT=60)"},
        {Sender::kPinPad,
         "GCX000043" + "804F 0002"_hex + "03" + "8052 0010"_hex + kPan + "8055 0003"_hex + "A/B" + "805D 0006"_hex
             + "301231",
         "GCX 000 OK: PP_CARDTYPE=\"03\", PP_PAN: 16 bytes withheld, PP_CHNAME: 3 bytes withheld, "
         "PP_CARDEXP: 6 bytes withheld"},
        {Sender::kPinPad, "GED000023" + "8054 0013 9F02020100 5A084111111111111111 DF01015A"_hex,
         "GED 000 OK: PP_EMVDATA={9F02=0100, 5A: 8 bytes withheld, DF01: 1 bytes withheld}"},
        {Sender::kHost, "DWK0361100BDBE59C77CF56415BAB6EAD19B49AD8C",
         "DWK load a PAN working key: DWK_MODE=\"1\", 35 bytes withheld"},
        {Sender::kPinPad, "GPN0000361B9C1845EB993A7AFFFF9876543210E00001",
         "GPN 000 OK: GPN_PINBLK: 16 bytes withheld, GPN_KSN=\"FFFF9876543210E00001\""},
        {Sender::kHost, "CNG00503820138", "CNG change EMV data: 11 bytes withheld"},
        {Sender::kPinPad, "NTM000032" + std::string(32, 'X'), "NTM 000 OK: NTM_MSG=\"" + std::string(32, 'X') + "\""},
        // What breaks its layout.
        {Sender::kHost, "GCX020" + "0013 0010"_hex + kPan, "GCX read a card: SPE_AMOUNT: 16 bytes withheld"},
        {Sender::kPinPad, "GCX000014" + "8054 000A 5A20"_hex + kPan.substr(8),
         "GCX 000 OK: PP_EMVDATA: 10 bytes withheld"},
        {Sender::kHost, "GCX999" + kPan, "GCX read a card: 19 bytes withheld"},
        {Sender::kHost, "GIN018" + kPan + "00", "GIN device information: GIN_ACQIDX=\"41\", 16 bytes withheld"},
        {Sender::kHost, "GIN0034X1", "GIN device information: 6 bytes withheld"},
        {Sender::kHost, "DSP099" + kPan, "DSP show a message: 19 bytes withheld"},
        {Sender::kPinPad, "GCR000100" + kPan + std::string(84, ' '), "GCR 000 OK: 103 bytes withheld"},
        {Sender::kPinPad, "41111111", "no response: 8 bytes withheld"},
        {Sender::kHost, kPan, "16 bytes withheld"},
        // What no table has.
        {Sender::kHost, "XYZ016" + kPan, "\"XYZ\": 19 bytes withheld"},
        {Sender::kPinPad, "GIX000020" + "80FF 0010"_hex + kPan, "GIX 000 OK: 0x80FF: 16 bytes withheld"},
    };
    for (const auto& [sender, packet, due] : cases) {
        EXPECT_EQ(words(sender, packet), due);
        EXPECT_EQ(is_open(sender, to_bytes(packet)), due.find("withheld") == std::string::npos) << due;
        // As many bytes as the words say; of data objects that are not all open, every one.
        static const std::regex kWithheld("([0-9]+) bytes withheld");
        int withheld = 0;
        for (std::sregex_iterator each(due.begin(), due.end(), kWithheld), end; each != end; ++each) {
            withheld += std::stoi((*each)[1]);
        }
        const std::vector<bool> open = open_bytes(sender, to_bytes(packet));
        EXPECT_EQ(std::ranges::count(open, false), due.find('{') == std::string::npos ? withheld : 19) << due;
    }
}

TEST(Privacy, TellsEachByteThatMayBeShown) {
    const std::tuple<Sender, std::string, std::string> cases[]{
        {Sender::kPinPad, "GPN0000361B9C1845EB993A7AFFFF9876543210E00001",
         "GPN000036................FFFF9876543210E00001"},
        {Sender::kHost, "GCX016" + "0013 000C"_hex + "000000001000" + "020" + "8052 0010"_hex + kPan,
         "GCX016" + "0013 000C"_hex + "000000001000" + "020" + "8052 0010"_hex + std::string(16, '.')},
        {Sender::kPinPad, "ERR010", "ERR010"},
        {Sender::kHost, kPan, std::string(16, '.')},
    };
    for (const auto& [sender, packet, due] : cases) {
        std::string shown = packet;
        const std::vector<bool> open = open_bytes(sender, to_bytes(packet));
        for (size_t i = 0; i < shown.size(); ++i) { shown[i] = open.at(i) ? shown[i] : '.'; }
        EXPECT_EQ(shown, due);
    }
}

bool all_withheld(const std::vector<Item>& items) {
    return std::ranges::all_of(items, [](const Item& item) { return item.privacy == Privacy::kWithheld; });
}

TEST(Privacy, WithholdsEachCommandParameterAndTagThatIsInNoTable) {
    for (uint32_t id = 0; id <= UINT16_MAX; ++id) {
        const auto param = static_cast<uint16_t>(id);
        if (!param_name(param).starts_with("0x")) { continue; }
        EXPECT_EQ(param_item(param, to_bytes("1")).privacy, Privacy::kWithheld) << id;
        if (!tag_name(id).empty()) { continue; }
        EXPECT_EQ(data_object(id, to_bytes("1")).privacy, Privacy::kWithheld) << id;
    }
    for (const Command& command : kAllCommands) {
        if (command.form == Command::Form::kParams) { continue; }
        const std::string id(command.id);
        if (fields_of(id, Sender::kHost).empty()) {
            EXPECT_TRUE(all_withheld(take_apart(Sender::kHost, to_bytes(id + "016" + kPan)).items)) << id;
        }
        if (fields_of(id, Sender::kPinPad).empty()) {
            EXPECT_TRUE(all_withheld(take_apart(Sender::kPinPad, to_bytes(id + "000016" + kPan)).items)) << id;
        }
    }
    EXPECT_TRUE(all_withheld(take_apart(Sender::kHost, to_bytes("NEW016" + kPan)).items));
}

TEST(Privacy, WithholdsTracksKeysPinsAndWhatIsTyped) {
    for (const uint16_t id :
         {spe::kWkEnc, spe::kDataIn, pp::kTrk1Inc, pp::kTrk2Inc, pp::kTrk3Inc, pp::kTrack1, pp::kTrack2, pp::kTrack3,
          pp::kEncPan, pp::kValue, pp::kDataOut, pp::kPinBlk, pp::kEncKRand}) {
        EXPECT_EQ(param_item(id, to_bytes("1")).privacy, Privacy::kWithheld) << param_name(id);
    }
    for (const Tag tag : {0x57U, 0x56U, 0x9F6BU, 0x9F20U, 0x9F1FU}) {
        EXPECT_EQ(data_object(tag, to_bytes("1")).privacy, Privacy::kWithheld) << tag;
    }
    std::set<std::string_view> fields;
    for (const Command& command : kAllCommands) {
        for (const Sender sender : {Sender::kHost, Sender::kPinPad}) {
            for (const Field& field : fields_of(command.id, sender)) {
                if (field.content.privacy == Privacy::kWithheld) { fields.insert(field.name); }
            }
        }
    }
    EXPECT_EQ(fields, (std::set<std::string_view>{"", "ENB_DATA", "ENB_WKENC", "FNC_ISSDAT", "GCR_CARD", "GOC_ACQPR",
                                                  "GOC_PINBLK", "GOC_WKENC", "GPN_PAN", "GPN_PINBLK", "GPN_WKENC",
                                                  "OPN_CRKS"}));
    EXPECT_EQ(param_item(pp::kPan, to_bytes(kPan)).privacy, Privacy::kCard);
    EXPECT_EQ(data_object(0x5A, to_bytes("1")).privacy, Privacy::kCard);
}

}  // namespace
