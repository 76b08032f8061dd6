// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/cli/tool.h"

namespace {

using Words = std::vector<std::string>;

void expect_lines(const Ended& ended, const Words& lines) {
    EXPECT_EQ(ended.exit, 0) << ended.err;
    for (const std::string& line : lines) {
        EXPECT_NE(("\n" + ended.out).find("\n" + line + "\n"), std::string::npos) << line << "\n" << ended.out;
    }
}

using CommandTest = PinPadToolTest;

TEST_F(CommandTest, InfoTellsWhatThePinPadIs) {
    expect_lines(run({"info"}), {"Manufacturer         QUORVEL", "Text display         4 lines of 16 columns",
                                 "Graphic display      160 x 128 points", "Media formats        PNG, JPG, GIF"});
    const Json object = run_json({"info", "--secure"});
    EXPECT_EQ(object["command"], "info");
    EXPECT_EQ(object["result"]["serialNumber"], "QV00000001");
    EXPECT_EQ(object["result"]["osVersion"], "QSO 0.1.0");
}

TEST_F(CommandTest, GixTakesNamesAndNumbers) {
    expect_lines(run({"gix", "sernum", "PP_TLRMEM", "0x9305"}),
                 {"PP_SERNUM   QV00000001", "PP_TLRMEM   262144", "PP_TABVER5  not told"});
    EXPECT_EQ(run_json({"gix"})["result"]["PP_MODEL"], "VIRTUAL;SIM");
}

TEST_F(CommandTest, DisplayLeavesItsTextWhenTheSessionIsOver) {
    EXPECT_EQ(run({"display", "HELLO"}).exit, 0);
    EXPECT_EQ(pinPad_.screen().text, "HELLO");
    EXPECT_EQ(run_json({"display", "ONE\\nTWO"})["result"]["shown"], "ONE\\nTWO");
    EXPECT_EQ(pinPad_.screen().text, "ONE\rTWO");
}

TEST_F(CommandTest, MenuTellsTheChoice) {
    pinPad_.when("MNU", Gestures().choose(2));
    expect_lines(run({"menu", "TEA", "COFFEE", "--title", "DRINK"}), {"Choice  2", "Option  COFFEE"});
    pinPad_.when("MNU", Gestures().press(Key::kCancel));
    const Json object = run_json({"menu", "TEA"});
    EXPECT_EQ(object["exit"], 1);
    EXPECT_EQ(object["error"]["status"]["name"], "ST_CANCEL");
}

TEST_F(CommandTest, KeyNamesTheKey) {
    for (const auto& [key, name] : {std::pair(Key::kEnter, "ENTER"), {Key::kF3, "F3"}, {Key::kCancel, "CANCEL"}}) {
        pinPad_.when("GKY", Gestures().press(key));
        EXPECT_EQ(run_json({"key"})["result"]["key"], name);
    }
    pinPad_.when("GKY", Gestures().notify("STILL THERE?").press(Key::kF1));
    const Ended human = run({"key"});
    EXPECT_EQ(human.out, "Key  F1\n");
    EXPECT_NE(human.err.find("PIN pad: STILL THERE?\n"), std::string::npos);
}

TEST_F(CommandTest, EventTellsWhatCameFirst) {
    pinPad_.when("CEX", Gestures().press(Key::kF2));
    expect_lines(run({"event"}), {"Event    PRESSED_KEY_F2", "Meaning  a key was pressed"});
    pinPad_.when("CEX", Gestures().press(Key::kF2).insert({.pan = "4111111111111111"}));
    EXPECT_EQ(run_json({"event", "chip"})["result"]["event"], "ICC_INSERTED");
    EXPECT_EQ(run({"event", "--timeout", "1", "stripe"}).exit, 1);
}

TEST_F(CommandTest, PinGivesTheBlockOnlyToThoseWhoAsk) {
    pinPad_.when("GPN", Gestures().type("1234"));
    const Json withheld = run_json({"pin", "--pan", "4111111111111111"});
    EXPECT_EQ(withheld["result"]["pinBlock"], "withheld");
    EXPECT_EQ(withheld["result"]["keySerialNumber"], "FFFF9876543210E00001");
    pinPad_.when("GPN", Gestures().type("1234"));
    const Json revealed = run_json({"pin", "--pan", "4111111111111111", "--reveal"});
    EXPECT_EQ(revealed["result"]["pinBlock"].get<std::string>().size(), 16U);
    pinPad_.when("GPN", Gestures().type("1234"));
    EXPECT_EQ(run({"pin", "--method", "mk-tdes", "--working-key", "00112233445566778899AABBCCDDEEFF"}).out,
              "PIN block  withheld\n");
}

TEST_F(CommandTest, KeysListsTheSlotsWithTheirSerialNumbers) {
    expect_lines(run({"keys"}),
                 {"  master  DES         PIN   0", "  DUKPT   triple DES  PIN   0      FFFF9876543210E00000"});
    const Json rows = run_json({"keys"})["result"]["keys"];
    EXPECT_EQ(rows.back()["kind"], "DUKPT");
    EXPECT_EQ(rows.back()["use"], "data");
    EXPECT_EQ(rows.back()["keySerialNumber"], "FFFF9876543210E00000");
}

// A record of the given table index, 400 characters long: two fit into a batch.
std::string record(int index) { return "400103" + std::to_string(100 + index).substr(1) + std::string(392, 'x'); }

TEST_F(CommandTest, TablesAreLoadedInBatches) {
    std::string file = "# comment\nversion 2026010100\n\n";
    for (int i = 0; i < 5; ++i) { file += record(i) + (i == 4 ? "\r\n" : "\n"); }
    const std::string path = folder_.file("demo.tables", file);
    expect_lines(run({"tables", "load", path}), {"Acquirer        0", "Version         2026010100", "Records         5",
                                                 "Version before  none", "Loaded          yes"});
    const Words due{"CAN", "OPN", "GTS", "TLI", "TLR", "TLR", "TLR", "TLE", "CLO"};
    EXPECT_EQ(sent(), due);
    EXPECT_EQ(run_json({"tables", "load", path, "--if-different"})["result"]["loaded"], false);
    EXPECT_EQ(run_json({"tables", "version", "0", "7"})["result"]["tables"],
              Json::parse(R"([{"acquirer": 0, "version": "2026010100"}, {"acquirer": 7, "version": "2026010100"}])"));
    // A hundred short ones are one too many for a batch.
    std::string many = "version 2026010102\n";
    for (int i = 100; i < 200; ++i) { many += "008203" + std::to_string(i).substr(1) + "\n"; }
    for (const std::string& each : {folder_.file("many.tables", many), path}) {
        EXPECT_EQ(run({"tables", "load", each}).exit, 0);
    }
    sim::Tables::Records loaded;
    for (int i = 0; i < 5; ++i) { loaded[{1, 3, "0" + std::to_string(i)}] = sim::Bytes(392, 'x'); }
    pinPad_.stop();
    EXPECT_EQ(pinPad_.device().tables.records(), loaded);
}

TEST_F(CommandTest, MediaFilesComeAndGo) {
    std::string image(2506, '\0');
    for (size_t i = 0; i < image.size(); ++i) { image[i] = static_cast<char>(i * 7 + (i >> 8)); }
    const std::string path = folder_.file("logo.png", image);
    const Json put = run_json({"media", "put", path});
    EXPECT_EQ(put["result"]["name"], "LOGO");
    EXPECT_EQ(put["result"]["size"], 2506);
    EXPECT_EQ(run({"media", "put", path, "--name", "other", "--type", "gif"}).exit, 0);
    expect_lines(run({"media", "list"}), {"Files", "  LOGO", "  OTHER"});
    EXPECT_EQ(run({"media", "show", "logo"}).exit, 0);
    EXPECT_EQ(pinPad_.screen().media, "LOGO");
    EXPECT_EQ(run({"media", "delete", "other"}).exit, 0);
    EXPECT_EQ(run_json({"media", "show", "other"})["error"]["status"]["name"], "ST_MFNFOUND");
    pinPad_.stop();
    const auto& files = pinPad_.device().media.files();
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(files.at("LOGO"), (sim::Media::File{1, sim::to_bytes(image)}));
}

TEST_F(ToolTest, PortsListsWhatIsThere) {
    EXPECT_TRUE(run_json({"ports"})["result"]["ports"].is_array());
    EXPECT_EQ(run({"ports"}).out.substr(0, 6), "Ports\n");
}

}  // namespace
