// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/device/media.h"

#include "tests/simulator/fixture.h"

using namespace quorvel::sim;

namespace {

const std::string kNameHead = "001E 0008"_hex;
const std::string kInfoHead = "001F 000A"_hex;

// Both of MLI's parameters.
std::string mli(const std::string& name, const std::string& info) {
    return "MLI026" + kNameHead + name + kInfoHead + info;
}

using MediaTest = PinPadTest;

TEST_F(MediaTest, FilesAreThereOnceTheyAreWhole) {
    const std::string dsi = "DSI012" + kNameHead + "LOGO    ";
    Device device;
    device.media.store("OLD", {});
    play(device);
    // Announced the other way round.
    call("MLI026" + kInfoHead + "00000005 546C 03 000000"_hex + kNameHead + "LOGO    ", "MLI000");
    call("MLR009" + "000F 0005"_hex + "12345", "MLR000");
    call(dsi, "DSI100");
    call("MLE", "MLE000");
    call(dsi, "DSI000");
    call("CLX012" + kNameHead + "NONE    ", "CLX100");
    EXPECT_EQ(pinPad_->screen(), (Screen::Content{.media = "LOGO"}));
    call("DMF024" + kNameHead + "LOGO    " + kNameHead + "NONE    ", "DMF100");
    call("DMF036" + kNameHead + "OLD     " + kNameHead + "OLD     " + kNameHead + "LOGO    ", "DMF000");
    EXPECT_EQ(retire().media.files(), Media::Files{});
}

TEST_F(MediaTest, RefusesWhatIsOutOfPlaceOrShape) {
    const std::string logo = "LOGO    ";
    const std::string one = "00000001 0000 01 000000"_hex;
    Device device;
    device.media.store("LOGO", {2, {'x'}});
    play(device);
    refuse("010", Kind::kSequence,
           {{"MLR005" + "000F 0001"_hex + "1", "MLR: no load was begun"}, {"MLE", "MLE: no load was begun"}});
    refuse("101", Kind::kUnsupported,
           {{mli(logo, "00000001 0000 00 000000"_hex), "MLI: there are no files of type 0"},
            {mli(logo, "00000001 0000 04 000000"_hex), "MLI: there are no files of type 4"}});
    refuse("011", Kind::kLayout,
           {{mli(logo, "00000001 0000 01 000001"_hex), "SPE_MFINFO: reserved: 1 instead of 0"},
            {mli("LOGo    ", one), "SPE_MFNAME: a small letter"},
            {mli("        ", one), "SPE_MFNAME: no name"},
            {"DSI013" + "001E 0009"_hex + "LOGO     ", "SPE_MFNAME: 1 bytes too many"},
            {"LMF000", "LMF: 3 bytes too many"}});
    refuse("019", Kind::kLayout, {{"DMF", "DMF: no SPE_MFNAME"}});
    call(mli(logo, "00000002 31C3 01 000000"_hex), "MLI000");
    call("MLR006" + "000F 0002"_hex + "12", "MLR000");
    refuse("102", Kind::kLayout, {{"MLR005" + "000F 0001"_hex + "3", "MLR: 3 bytes of LOGO, which has 2"}});
    refuse("011", Kind::kLayout, {{"MLR004" + "000F 0000"_hex, "MLR: no data"}});
    refuse("102", Kind::kLayout, {{"MLE", "MLE: LOGO has the CRC 0x20B5, 0x31C3 was announced"}});
    refuse("010", Kind::kSequence, {{"MLE", "MLE: no load was begun"}});
    call(mli(logo, one), "MLI000");
    refuse("102", Kind::kLayout, {{"MLE", "MLE: 0 bytes of LOGO, which has 1"}});
    EXPECT_EQ(retire().media.files(), device.media.files());
}

}  // namespace
