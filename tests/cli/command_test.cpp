// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <csignal>
#include <filesystem>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

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

// As a PIN pad refuses one that does not know what it is.
TEST_F(CommandTest, ASessionThatIsRefusedIsExplained) {
    pinPad_.inject({.kind = "status", .command = "OPN", .status = 10, .before = true, .asError = true});
    const Ended ended = run({"info", "--secure"});
    EXPECT_EQ(ended.exit, 1);
    EXPECT_NE(ended.err.find("may not know encrypted sessions: without --secure"), std::string::npos) << ended.err;
    EXPECT_EQ(run({"info"}).exit, 0);
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
    EXPECT_EQ(run_json({"display", "CAFÉ"})["result"]["shown"], "CAFÉ");
    EXPECT_EQ(pinPad_.screen().text, "CAF\xC9");
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
    const std::string pan = "@" + folder_.file("pan", "4111111111111111\n");
    pinPad_.when("GPN", Gestures().type("1234"));
    const Json withheld = run_json({"pin", "--pan", pan});
    EXPECT_EQ(withheld["result"]["pinBlock"], "withheld");
    EXPECT_EQ(withheld["result"]["keySerialNumber"], "FFFF9876543210E00001");
    pinPad_.when("GPN", Gestures().type("1234"));
    const Json revealed = run_json({"pin", "--pan", pan, "--reveal"});
    EXPECT_EQ(revealed["result"]["pinBlock"].get<std::string>().size(), 16U);
    pinPad_.when("GPN", Gestures().type("1234"));
    const std::string both = folder_.file("both", "00112233445566778899AABBCCDDEEFF\r\n4111111111111111\n");
    EXPECT_EQ(redirected("<" + both, {"pin", "--method", "mk-tdes", "--working-key", "-", "--pan", "-"}).out,
              "PIN block  withheld\n");
}

// The prompt is there once the terminal no longer echoes.
TEST_F(CommandTest, PinAsksATerminalWithoutEcho) {
    std::array<char, 64> name{};
    int master = -1;
    int slave = -1;
    ASSERT_EQ(openpty(&master, &slave, name.data(), nullptr, nullptr), 0);
    pinPad_.when("GPN", Gestures().type("1234"));
    std::thread typist([&] {
        termios settings{};
        for (settings.c_lflag = ECHO; (settings.c_lflag & ECHO) != 0; tcgetattr(slave, &settings)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        EXPECT_EQ(write(master, "4111111111111111\n", 17), 17);
    });
    const Ended ended = redirected(std::string("<") + name.data(), {"pin", "--pan", "-"});
    typist.join();
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_NE(ended.err.find("The card number, which is not shown: \n"), std::string::npos) << ended.err;
    pollfd echoed{master, POLLIN, 0};
    EXPECT_EQ(poll(&echoed, 1, 0), 0);
    for (const int end : {master, slave}) { close(end); }
}

TEST_F(CommandTest, NumberWithholdsWhatIsTyped) {
    pinPad_.when("GCD", Gestures().type("4711"));
    expect_lines(run({"number"}), {"Digits  4", "Number  withheld"});
    pinPad_.when("GCD", Gestures().type("4711"));
    EXPECT_EQ(run_json({"number", "--reveal"})["result"]["number"], "4711");
}

TEST_F(CommandTest, WhatIsLeftOfACardIsToldToThoseWhoAsk) {
    pinPad_.when("GCX", Gestures().insert(card("visa-chip")));
    EXPECT_EQ(run({"tables", "load", QUORVEL_TABLES}).exit, 0);
    pinPad_.when("RMC", Gestures().remove());
    EXPECT_EQ(run({"card"}).exit, 0);
    expect_lines(run({"emv", "5F24", "9F26"}), {"  5F24 Expiration date  301231"});
    EXPECT_EQ(run({"emv", "9F"}).exit, 2);
    expect_lines(run({"tracks"}), {"Track 2  withheld"});
    pinPad_.insert(card("visa-chip"));
    pinPad_.when("RMC", Gestures().remove());
    expect_lines(run({"remove"}), {"Removed  yes"});
    const std::string data = "@" + folder_.file("data", "00112233445566778899AABBCCDDEEFF");
    const Json enciphered = run_json({"encipher", "--data", data})["result"];
    EXPECT_EQ(enciphered["enciphered"].get<std::string>().size(), 32U);
    EXPECT_EQ(enciphered["keySerialNumber"], "FFFF9876543210E00001");
    EXPECT_EQ(run({"encipher", "--data", "00"}).exit, 2);
}

TEST_F(CommandTest, CommandSendsAnyRequestByItsNames) {
    const auto contents = [&](Arguments arguments) {
        arguments.insert(arguments.begin(), "command");
        const Json object = run_json(arguments);
        return object["exit"].dump() + " " + object["result"].value("contents", Json()).dump();
    };
    EXPECT_EQ(contents({"gix", "IDLIST=8001"}), "0 {\"PP_SERNUM\":\"QV00000001\"}");
    EXPECT_EQ(contents({"GIN", "ACQIDX=4"}).substr(0, 14), "0 {\"GIN_DATA\":");
    EXPECT_EQ(contents({"DEX", "DEX_MSG=ONE\\nTWO"}), "0 null");
    EXPECT_EQ(contents({"ENB", "METHOD=1", "KEYIDX=50", "WKENC=@" + folder_.file("key", std::string(32, '0')),
                        "DATA=@" + folder_.file("data", std::string(16, '0'))})
                  .substr(0, 2),
              "1 ");
    pinPad_.when("GKY", Gestures().press(Key::kF1));
    EXPECT_EQ(run_json({"command", "GKY"})["result"]["status"]["name"], "ST_F1");
    pinPad_.when("GCX", Gestures().swipe(card("visa-magnetic")));
    const std::string lines =
        "# a card, and what stands on it\nGCX TRNDATE=260101 TRNTIME=120000 AMOUNT=100 GCXOPT=00000\n"
        "GTK TRACKS=0100\nDSI MFNAME=NONENONE\nDSP MSG=NEVER\n";
    const Ended several = redirected("<" + folder_.file("lines", lines), {"command", "-", "--json"});
    const Json answers = Json::parse(several.out)["result"]["answers"];
    ASSERT_EQ(answers.size(), 3U) << several.out;
    EXPECT_EQ(answers[0]["contents"]["PP_PAN"], "401288******1881");
    EXPECT_EQ(answers[1]["contents"]["PP_TRACK2"], "withheld");
    EXPECT_EQ(answers[2]["status"]["name"], "ST_MFNFOUND");
    EXPECT_EQ(several.exit, 1);
    EXPECT_EQ(contents({"GEN", "GROUP=02", "SUBCMD=K3", "REST=@" + folder_.file("rest", "300099")}).substr(0, 2), "0 ");
    const std::pair<Arguments, const char*> refused[]{
        {{"XYZ"}, "There is no command XYZ."},
        {{"OPN"}, "belongs to the session"},
        {{"GIX", "NONSENSE=1"}, "There is no parameter NONSENSE."},
        {{"GIX", "IDLIST=1"}, "hexadecimal digits, two a byte"},
        {{"CEX", "TIMEOUT=256"}, "a number of 1 bytes"},
        {{"GTS"}, "GTS_ACQIDX is missing."},
        {{"GTS", "ACQIDX=0", "X=1"}, "GTS has no field X."},
        {{"EBX", "DATAIN=00"}, "DATAIN may be a secret"},
    };
    for (const auto& [arguments, said] : refused) {
        Arguments all{"command"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const Ended ended = run(all);
        EXPECT_EQ(ended.exit, 2);
        EXPECT_NE(ended.err.find(said), std::string::npos) << ended.err;
    }
}

// The cable is out for a while, and the PIN pad comes back under the same name.
TEST_F(ToolTest, WatchTellsOfEventsAndComesBack) {
    const std::string port = folder_ / "port";
    sim::PinPad* plugged = nullptr;
    // What is to happen is planned before the tool can find the port again.
    const auto link = [&](const std::string& path) {
        if (plugged != nullptr) {
            plugged->when("CEX", Gestures().insert({.pan = "4111111111111111"}));
            plugged->when("CEX", Gestures().remove());
        }
        std::filesystem::remove(port);
        std::filesystem::create_symlink(path, port);
    };
    sim::PinPad pinPad({.returned = link});
    link(pinPad.path());
    plugged = &pinPad;
    pinPad.start();
    pinPad.when("CEX", Gestures().press(Key::kF1));
    Tool tool({"--port", port, "watch", "--json"}, folder_ / "");
    EXPECT_EQ(tool.line(), R"({"event":"PRESSED_KEY_F1","meaning":"a key was pressed"})");
    std::filesystem::remove(port);  // it leads to a line that the system may give to somebody else now
    pinPad.hang_up(std::chrono::milliseconds(700));
    EXPECT_EQ(tool.line(), R"({"event":"ICC_INSERTED","meaning":"a chip card is in"})");
    EXPECT_EQ(tool.line(), R"({"event":"ICC_REMOVED","meaning":"the chip card is out"})");
    EXPECT_EQ(tool.end(SIGINT), 130);
    EXPECT_EQ(tool.output(), "");
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
    const Words due{"CAN", "OPN", "GTS", "GTS", "TLI", "TLR", "TLR", "TLR", "TLE", "CLO"};
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
    EXPECT_EQ(run({"tables", "load", folder_.file("none.tables", "version 2026010103\n")}).exit, 2);
    sim::Tables::Records loaded;
    for (int i = 0; i < 5; ++i) { loaded[{1, 3, "0" + std::to_string(i)}] = sim::Bytes(392, 'x'); }
    pinPad_.stop();
    EXPECT_EQ(pinPad_.device().tables.records(), loaded);
}

TEST_F(CommandTest, MediaFilesComeAndGo) {
    std::string image = "\x89PNG\r\n\x1A\n";
    for (size_t i = image.size(); i < 2506; ++i) { image += static_cast<char>(i * 7 + (i >> 8)); }
    const std::string path = folder_.file("logo.png", image);
    const Json put = run_json({"media", "put", path});
    EXPECT_EQ(put["result"]["name"], "LOGO");
    EXPECT_EQ(put["result"]["size"], 2506);
    const std::string other = folder_.file("other", "GIF89a");
    EXPECT_EQ(run({"media", "put", other, "--type", "gif"}).exit, 0);
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
