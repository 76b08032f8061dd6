// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <csignal>
#include <cstdlib>
#include <set>
#include <string>
#include <thread>
#include <unistd.h>

#include "tests/core/temp_dir.h"
#include "tests/simulator/fixture.h"
#include "tests/support/child.h"
#include "tests/support/peer.h"

using namespace quorvel::sim;

namespace {

// Runs by the shell, which has both of the program's outputs come as one.
void expect_run(const std::string& command, int status, const std::string& output) {
    support::Child program({"/bin/sh", "-c", command + " 2>&1"});
    EXPECT_EQ(program.wait(), status) << command;
    EXPECT_EQ(program.output(), output);
}

// With a virtual PIN pad, which has nothing to complain about.
class Example : public testing::Test {
protected:
    Example() { pinPad_.start(); }
    ~Example() override { EXPECT_TRUE(pinPad_.findings().empty()); }

    static void expect_example(const std::string& nameAndArguments, int status, const std::string& output) {
        expect_run(QUORVEL_EXAMPLES "/" + nameAndArguments, status, output);
    }

    PinPad pinPad_;
    const std::string port_ = " " + pinPad_.path();
};

TEST_F(Example, FirstLightPrintsWhatThePinPadTellsOfItselfOrTheError) {
    const std::string answers =
        "manufacturer   QUORVEL\n"
        "model          VIRTUAL SIM\n"
        "contactless    yes\n"
        "system         QSO 0.1.0\n"
        "specification  2.12\n"
        "version        001.00 260101\n"
        "serial number  QV00000001\n"
        "ABECS_RSP_DATID_PP_SERNUM       QV00000001\n"
        "ABECS_RSP_DATID_PP_PARTNBR      QV-SIM-1\n"
        "ABECS_RSP_DATID_PP_MODEL        VIRTUAL;SIM\n"
        "ABECS_RSP_DATID_PP_MNNAME       QUORVEL\n"
        "ABECS_RSP_DATID_PP_CAPAB        1111000000\n"
        "ABECS_RSP_DATID_PP_SOVER        QSO 0.1.0\n"
        "ABECS_RSP_DATID_PP_SPECVER      2.12\n"
        "ABECS_RSP_DATID_PP_MANVERS      001.00 260101\n"
        "ABECS_RSP_DATID_PP_APPVERS      001.00 260101\n"
        "ABECS_RSP_DATID_PP_KSNTDESP0    FFFF9876543210E00000\n";
    expect_example("first_light" + port_, EXIT_SUCCESS,
                   "-- plain session\n" + answers + "-- encrypted session\n" + answers);
    expect_example("first_light /nowhere/port", EXIT_FAILURE,
                   "/nowhere/port: [KOR_RESULT_FILE_NOT_FOUND] No such port: /nowhere/port\n");
}

TEST_F(Example, FindPinPadSaysWhyAPortIsNoneAndStopsAtTheOneThatIs) {
    const std::string none =
        "/nowhere/port: nothing is plugged in\n"
        "/dev/null: no PIN pad: [KOR_RESULT_IO_ERROR] tcgetattr() error: 25\n";
    expect_example("find_pin_pad /nowhere/port /dev/null" + port_ + " /nowhere/port", EXIT_SUCCESS,
                   none + pinPad_.path() + ": here it is\n");
    expect_example("find_pin_pad /nowhere/port /dev/null", EXIT_FAILURE, none);
}

TEST_F(Example, WaitForKeyTellsTheKeyOrGivesUpInTime) {
    pinPad_.when("GKY", Gestures().notify("ANY KEY").press(Key::kF2));
    expect_example("wait_for_key" + port_ + " 60", EXIT_SUCCESS, "the PIN pad says: ANY KEY\nABECS_RSP_STAT_ST_F2\n");
    expect_example("wait_for_key" + port_ + " 0", EXIT_SUCCESS, "ABECS_RSP_STAT_ST_TIMEOUT\n");
}

TEST_F(Example, TwoPinPadsAreServedAsTheyAnswer) {
    PinPad other;
    other.start();
    other.when("GKY", Gestures().press(Key::kF1));
    pinPad_.when("GKY", Gestures().notify("ANY KEY").press(Key::kF2));
    for (const std::string named : {"two_pin_pads|ABECS_RSP_STAT_ST_", "cpp_two_pin_pads|"}) {
        const size_t bar = named.find('|');
        support::Child program({QUORVEL_EXAMPLES "/" + named.substr(0, bar), pinPad_.path(), other.path()});
        const std::string key = ": " + named.substr(bar + 1);
        const std::set<std::string> told{program.line(), program.line()};
        EXPECT_EQ(program.wait(), EXIT_SUCCESS);
        EXPECT_EQ(told, (std::set<std::string>{other.path() + key + "F1", pinPad_.path() + key + "F2"}));
        other.when("GKY", Gestures().press(Key::kF1));
        pinPad_.when("GKY", Gestures().notify("ANY KEY").press(Key::kF2));
    }
    EXPECT_EQ(pinPad_.screen().text, "THANK YOU");
    EXPECT_EQ(other.screen().text, "THANK YOU");
    EXPECT_TRUE(other.findings().empty());
}

TEST_F(Example, LogFramesTellsOfEachFrame) {
    support::Child program({QUORVEL_EXAMPLES "/log_frames", pinPad_.path()});
    for (const char* line :
         {"sent      OPN 3 bytes, ", "received  OPN 6 bytes, ", "sent      DSP 38 bytes, ", "received  DSP 6 bytes, ",
          "sent      CLO 38 bytes, ", "received  CLO 6 bytes, ", "ABECS_RSP_STAT_ST_OK"}) {
        EXPECT_EQ(program.line().find(line), 0U) << line;
    }
    EXPECT_EQ(program.wait(), EXIT_SUCCESS);
}

// A PIN pad that refuses the command for good, as it does on a line with noise: the same session goes on when CAN is
// confirmed, and a new one when it is not.
TEST(Steady, GoesOnWithOrWithoutOpeningTheLinkAnew) {
    const std::string show = "DSP032" + padded("HI", 32);
    for (const bool confirmed : {true, false}) {
        support::Peer peer;
        const auto open = [&] { peer.accept_can().request("OPN").response("OPN000"); };
        open();
        for (int i = 0; i < 3; ++i) { peer.expect(frame(show)).send(kNak); }
        if (confirmed) {
            peer.accept_can();
        } else {
            peer.expect(kCan).expect(kCan).expect(kCan);
            open();
        }
        peer.request(show).response("DSP000").request("CLO032" + padded("HI", 32)).response("CLO000");
        expect_run(QUORVEL_EXAMPLES "/steady " + peer.path() + " HI", EXIT_SUCCESS,
                   "[KOR_RESULT_PROTOCOL_ERROR] Packet was rejected\n");
    }
}

// However long the cable is out: the port's name leads nowhere at first.
TEST(Steady, WaitsForThePortToComeBack) {
    const TempDir folder;
    const std::string link = folder / "port";
    support::Child steady({QUORVEL_EXAMPLES "/steady", link, "HI"});
    std::this_thread::sleep_for(std::chrono::milliseconds(1700));
    PinPad pinPad;
    pinPad.start();
    ASSERT_EQ(symlink(pinPad.path().c_str(), link.c_str()), 0);
    EXPECT_EQ(steady.wait(), EXIT_SUCCESS) << steady.errors();
    EXPECT_NE(steady.errors().find("No such port"), std::string::npos);
    EXPECT_EQ(pinPad.findings(), std::vector<Finding>{});
    EXPECT_EQ(pinPad.screen().text, "HI");
}

TEST_F(Example, SaleGoesThroughAllStepsAndTellsHowItEnded) {
    const std::string kRefusedInC = "GOX was answered with ABECS_RSP_STAT_ST_CANCEL";
    const std::string reversed = "the acquirer must be told that there was no sale\nNOT APPROVED\n";
    const std::tuple<const char*, Gestures, const char*, std::string> cases[]{
        {"visa-chip", Gestures().type("1234"), "1234",
         "card 411111******1111\nthe PIN pad says: ENTER THE PIN\nthe acquirer answers: 00\nAPPROVED\n"},
        {"visa-signature", {}, "1234 none", "card 424242******4242\nthe acquirer answers: nothing\n" + reversed},
        {"declining-chip", {}, "1234", "card 400000******0069\nthe acquirer answers: 00\n" + reversed},
        {"mastercard-chip", Gestures().press(Key::kCancel), "1234",
         "card 510510******5100\nthe PIN pad says: ENTER THE PIN\n"
         "GOX was answered with ABECS_RSP_STAT_ST_CANCEL\nNOT APPROVED\n"},
    };
    for (const auto& [card, whileGox, arguments, output] : cases) {
        const bool approved = output.ends_with("\nAPPROVED\n");
        for (const std::string program : {"cpp_sale", "sale"}) {
            pinPad_.when("GCX", inserted(card));
            if (!whileGox.events().empty()) { pinPad_.when("GOX", whileGox); }
            pinPad_.when("RMC", Gestures().remove());
            std::string told = output;
            const size_t refused = program == "sale" ? std::string::npos : told.find(kRefusedInC);
            if (refused != std::string::npos) {
                told.replace(refused, kRefusedInC.size(), "[REFUSED] GOX answered 013 ST_CANCEL");
            }
            expect_example(program + port_ + " " + arguments, approved ? EXIT_SUCCESS : EXIT_FAILURE,
                           "insert the card\n" + told);
            EXPECT_EQ(pinPad_.screen().text, approved ? "APPROVED" : "NOT APPROVED");
        }
    }
}

// The line breaks after the acquirer's yes: nobody knows what the card has decided.
TEST(BrokenSale, TellsThatTheOutcomeIsUnknown) {
    for (const std::string name : {"sale", "cpp_sale"}) {
        PinPad pinPad;
        pinPad.start();
        pinPad.when("GCX", inserted("visa-chip"));
        pinPad.when("GOX", Gestures().type("1234"));
        pinPad.inject({.kind = "hang-up", .command = "FCX", .time = std::chrono::milliseconds(1)});
        support::Child program({QUORVEL_EXAMPLES "/" + name, pinPad.path(), "1234"});
        EXPECT_EQ(program.wait(), EXIT_FAILURE);
        EXPECT_TRUE(program.output().ends_with("the acquirer must be told that there was no sale\nUNKNOWN\n")) << name;
    }
}

TEST_F(Example, SaleIsGivenUpOnASignalAndLeavesThePinPadIdle) {
    for (const std::string name : {"sale", "cpp_sale"}) {
        support::Child program({QUORVEL_EXAMPLES "/" + name, pinPad_.path(), "1234"});
        EXPECT_EQ(program.line(), "insert the card");
        EXPECT_EQ(program.end(SIGINT), EXIT_FAILURE);
        EXPECT_EQ(program.output() + program.errors(), "NOT APPROVED\ngiven up at the till\n");
        EXPECT_EQ(pinPad_.screen().text, "NOT APPROVED");
    }
}

TEST_F(Example, SwipeShowsTheMaskedCardNumberAndThePinBlock) {
    pinPad_.when("CKE", Gestures().swipe({.pan = "4012345678909", .track2 = "4012345678909=30121010000000000"}));
    pinPad_.when("GPN", Gestures().type("1234"));
    expect_example("swipe" + port_, EXIT_SUCCESS,
                   "card       401234...8909\n"
                   "PIN block  1B9C1845EB993A7A, key FFFF9876543210E00001\n");
}

TEST_F(Example, InCppPrintsTheIdentificationOrTheError) {
    expect_example("cpp_who" + port_, EXIT_SUCCESS, "QUORVEL QV00000001\n");
    expect_example("cpp_who /nowhere/port", EXIT_FAILURE, "[KOR_RESULT_FILE_NOT_FOUND] No such port: /nowhere/port\n");
}

TEST_F(Example, AButtonCancelsTheWaitForACard) {
    expect_run("echo | " QUORVEL_EXAMPLES "/cpp_cancel_button" + port_, EXIT_SUCCESS,
               "insert the card, or press ENTER to cancel\ncancelled\n");
    EXPECT_EQ(pinPad_.screen().text, "CANCELLED");
}

// A sanitizer must be loaded before the program, which here is the interpreter.
#ifdef QUORVEL_PYTHON
TEST_F(Example, InPythonShowsTheTextOrTheError) {
    const std::string program = QUORVEL_PYTHON " " QUORVEL_LIBRARY;
    expect_run(program + port_ + " HELLO", EXIT_SUCCESS, "RSP_STAT 0\n");
    EXPECT_EQ(pinPad_.screen().text, "HELLO");
    expect_run(program + " /nowhere/port HELLO", EXIT_FAILURE,
               "code 8: [KOR_RESULT_FILE_NOT_FOUND] No such port: /nowhere/port\n");
    expect_run(program + port_ + " 'A TEXT THAT IS TOO LONG FOR THE DISPLAY'", EXIT_FAILURE,
               "code 2: [KOR_RESULT_ILLEGAL_ARGUMENT] 'msg' it too long (maximum: 32, requested: 39)\n");
}
#endif

}  // namespace
