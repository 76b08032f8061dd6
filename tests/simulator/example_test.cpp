// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "simulator/cards/cards.h"
#include "simulator/pin_pad.h"
#include "tests/support/child.h"
#include "tests/support/peer.h"

namespace {

using namespace quorvel::sim;
using namespace support::literals;
using support::frame;
using support::Peer;

struct Outcome {
    int status = -1;
    std::string output;
};

// By the shell, which has both of the program's outputs come as one.
support::Child shell(const std::string& command) { return support::Child({"/bin/sh", "-c", command + " 2>&1"}); }

Outcome run(const std::string& command) {
    support::Child program = shell(command);
    const int status = program.wait();
    return {status, program.output()};
}

Outcome run_example(const std::string& name, const std::string& arguments) {
    return run(QUORVEL_EXAMPLES "/" + name + " " + arguments);
}

TEST(FirstLight, PrintsWhatThePinPadTellsOfItself) {
    PinPad pinPad;
    pinPad.start();
    const Outcome run = run_example("first_light", pinPad.path());
    EXPECT_EQ(run.status, EXIT_SUCCESS);
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
    EXPECT_EQ(run.output, "-- plain session\n" + answers + "-- encrypted session\n" + answers);
    EXPECT_TRUE(pinPad.findings().empty());
}

TEST(FirstLight, PrintsTheErrorAndFails) {
    const Outcome run = run_example("first_light", "/nowhere/port");
    EXPECT_EQ(run.status, EXIT_FAILURE);
    EXPECT_EQ(run.output, "/nowhere/port: [KOR_RESULT_FILE_NOT_FOUND] No such port: /nowhere/port\n");
}

TEST(FindPinPad, SaysWhyAPortIsNoneAndStopsAtTheOneThatIs) {
    PinPad pinPad;
    pinPad.start();
    const std::string none =
        "/nowhere/port: nothing is plugged in\n"
        "/dev/null: no PIN pad: [KOR_RESULT_IO_ERROR] tcgetattr() error: 25\n";
    Outcome run = run_example("find_pin_pad", "/nowhere/port /dev/null " + pinPad.path() + " /nowhere/port");
    EXPECT_EQ(run.status, EXIT_SUCCESS);
    EXPECT_EQ(run.output, none + pinPad.path() + ": here it is\n");
    run = run_example("find_pin_pad", "/nowhere/port /dev/null");
    EXPECT_EQ(run.status, EXIT_FAILURE);
    EXPECT_EQ(run.output, none);
}

TEST(WaitForKey, TellsTheKeyAndWhatThePinPadSaysBefore) {
    PinPad pinPad;
    pinPad.start();
    pinPad.when("GKY", Gestures().notify("ANY KEY").press(Key::f2));
    const Outcome run = run_example("wait_for_key", pinPad.path() + " 60");
    EXPECT_EQ(run.status, EXIT_SUCCESS);
    EXPECT_EQ(run.output, "the PIN pad says: ANY KEY\nABECS_RSP_STAT_ST_F2\n");
    EXPECT_TRUE(pinPad.findings().empty());
}

TEST(WaitForKey, GivesUpInTimeAndFreesThePinPad) {
    PinPad pinPad;
    pinPad.start();
    const Outcome run = run_example("wait_for_key", pinPad.path() + " 0");
    EXPECT_EQ(run.status, EXIT_SUCCESS);
    EXPECT_EQ(run.output, "ABECS_RSP_STAT_ST_TIMEOUT\n");
    EXPECT_TRUE(pinPad.findings().empty());
}

class Steady : public testing::Test {
protected:
    // A PIN pad that refuses the command for good, as it does on a line with noise.
    Peer& refuse(const std::string& payload) {
        for (int i = 0; i < 3; ++i) peer_.expect(frame(payload)).send("15"_hex);
        return peer_;
    }

    void show(const std::string& output) {
        const Outcome run = run_example("steady", peer_.path() + " HI");
        EXPECT_EQ(run.status, EXIT_SUCCESS);
        EXPECT_EQ(run.output, output);
    }

    Peer peer_;
    const std::string show_ = "DSP032HI                              ";
};

TEST_F(Steady, CancelsAndGoesOnInTheSameSession) {
    peer_.accept_can().request("OPN").response("OPN000");
    refuse(show_).accept_can().request(show_).response("DSP000");
    show("[KOR_RESULT_PROTOCOL_ERROR] Packet was rejected\n");
}

TEST_F(Steady, OpensTheLinkAnewWhenNobodyConfirms) {
    peer_.accept_can().request("OPN").response("OPN000");
    refuse(show_).expect("18"_hex).expect("18"_hex).expect("18"_hex);
    peer_.accept_can().request("OPN").response("OPN000").request(show_).response("DSP000");
    show("[KOR_RESULT_PROTOCOL_ERROR] Packet was rejected\n");
}

TEST(Sale, GoesThroughAllStepsAndTellsHowItEnded) {
    const Gestures pin = Gestures().type("1234");
    const std::string reversed = "the acquirer must be told that there was no sale\nNOT APPROVED\n";
    const struct {
        const char* card;
        std::optional<Gestures> whileGox;
        const char* arguments;
        std::string output;
        int status = EXIT_FAILURE;
    } cases[]{
        {"visa-chip", pin, "1234",
         "card 411111******1111\nthe PIN pad says: ENTER THE PIN\nthe acquirer answers: 00\nAPPROVED\n", EXIT_SUCCESS},
        {"visa-signature", {}, "1234 none", "card 424242******4242\nthe acquirer answers: nothing\nNOT APPROVED\n"},
        {"declining-chip", {}, "1234", "card 400000******0069\nthe acquirer answers: 00\n" + reversed},
        {"mastercard-chip", Gestures().press(Key::cancel), "1234",
         "card 510510******5100\nthe PIN pad says: ENTER THE PIN\n"
         "GOX was answered with ABECS_RSP_STAT_ST_CANCEL\nNOT APPROVED\n"},
    };
    PinPad pinPad;
    pinPad.start();
    for (const auto& each : cases) {
        SCOPED_TRACE(each.card);
        pinPad.when("GCX", Gestures().insert(Cards::standard().at(each.card)));
        if (each.whileGox) pinPad.when("GOX", *each.whileGox);
        pinPad.when("RMC", Gestures().remove());
        const Outcome run = run_example("sale", pinPad.path() + " " + each.arguments);
        EXPECT_EQ(run.status, each.status);
        EXPECT_EQ(run.output, "insert the card\n" + each.output);
        EXPECT_EQ(pinPad.screen().text, each.status == EXIT_SUCCESS ? "APPROVED" : "NOT APPROVED");
    }
    EXPECT_TRUE(pinPad.findings().empty());
}

TEST(Sale, IsGivenUpOnASignalAndLeavesThePinPadIdle) {
    PinPad pinPad;
    pinPad.start();
    support::Child program({QUORVEL_EXAMPLES "/sale", pinPad.path(), "1234"});
    EXPECT_EQ(program.line(), "insert the card");
    EXPECT_EQ(program.end(SIGINT), EXIT_FAILURE);
    EXPECT_EQ(program.output() + program.errors(), "NOT APPROVED\ngiven up at the till\n");
    EXPECT_EQ(pinPad.screen().text, "NOT APPROVED");
    EXPECT_TRUE(pinPad.findings().empty());
}

TEST(Swipe, ShowsTheMaskedCardNumberAndThePinBlock) {
    PinPad pinPad;
    pinPad.start();
    pinPad.when("CKE", Gestures().swipe({.pan = "4012345678909", .track2 = "4012345678909=30121010000000000"}));
    pinPad.when("GPN", Gestures().type("1234"));
    const Outcome run = run_example("swipe", pinPad.path());
    EXPECT_EQ(run.status, EXIT_SUCCESS);
    EXPECT_EQ(run.output,
              "card       401234...8909\n"
              "PIN block  1B9C1845EB993A7A, key FFFF9876543210E00001\n");
    EXPECT_TRUE(pinPad.findings().empty());
}

TEST(InCpp, PrintsTheIdentificationOrTheError) {
    PinPad pinPad;
    pinPad.start();
    Outcome run = run_example("in_cpp", pinPad.path());
    EXPECT_EQ(run.status, EXIT_SUCCESS);
    EXPECT_EQ(run.output, "QUORVEL QV00000001\n");
    run = run_example("in_cpp", "/nowhere/port");
    EXPECT_EQ(run.status, EXIT_FAILURE);
    EXPECT_EQ(run.output, "[KOR_RESULT_FILE_NOT_FOUND] No such port: /nowhere/port\n");
}

// A sanitizer must be loaded before the program, which here is the interpreter.
#ifdef QUORVEL_PYTHON
TEST(InPython, ShowsTheTextOrTheError) {
    PinPad pinPad;
    pinPad.start();
    const std::string program = QUORVEL_PYTHON " " QUORVEL_LIBRARY " ";
    Outcome outcome = run(program + pinPad.path() + " HELLO");
    EXPECT_EQ(outcome.status, EXIT_SUCCESS);
    EXPECT_EQ(outcome.output, "RSP_STAT 0\n");
    EXPECT_EQ(pinPad.screen().text, "HELLO");
    outcome = run(program + "/nowhere/port HELLO");
    EXPECT_EQ(outcome.status, EXIT_FAILURE);
    EXPECT_EQ(outcome.output, "code 8: [KOR_RESULT_FILE_NOT_FOUND] No such port: /nowhere/port\n");
    outcome = run(program + pinPad.path() + " 'A TEXT THAT IS TOO LONG FOR THE DISPLAY'");
    EXPECT_EQ(outcome.status, EXIT_FAILURE);
    EXPECT_EQ(outcome.output, "code 2: [KOR_RESULT_ILLEGAL_ARGUMENT] 'msg' it too long (maximum: 32, requested: 39)\n");
}
#endif

}  // namespace
