// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/cli/tool.h"
#include "tests/support/elapsed.h"

namespace {

class SaleTest : public PinPadToolTest {
protected:
    Json sell(const Arguments& more) const {
        Arguments arguments{"sale", "--amount", "12.34", "--tables", QUORVEL_TABLES};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run_json(arguments);
    }

    static std::string commands(const Json& object) {
        std::string text;
        for (const Json& step : object["result"]["steps"]) { text += step["command"].get<std::string>() + ";"; }
        return text;
    }
};

TEST_F(SaleTest, GoesFromTheTablesToTheRemovalOfTheCard) {
    pinPad_.when("GCX", Gestures().insert(card("visa-chip")));
    pinPad_.when("GOX", Gestures().type("1234"));
    pinPad_.when("RMC", Gestures().remove());
    const Json object = sell({});
    EXPECT_EQ(object["exit"], 0);
    const Json& result = object["result"];
    EXPECT_EQ(result["outcome"], "approved");
    EXPECT_EQ(result["reverse"], false);
    EXPECT_EQ(result["amount"], "12.34");
    EXPECT_EQ(result["card"]["cardNumber"], "411111******1111");
    EXPECT_EQ(result["card"]["application"], "VISA CREDITO");
    EXPECT_EQ(result["card"]["tableRecord"], "030101");
    EXPECT_EQ(result["verification"], "PIN, for the acquirer to check");
    EXPECT_EQ(result["pinBlock"], "withheld");
    EXPECT_EQ(result["keySerialNumber"], "FFFF9876543210E00001");
    EXPECT_EQ(result["cardToAcquirer"]["9F02"], "000000001234");
    EXPECT_EQ(result["cardToAcquirer"]["9F27"], "80 (ARQC, the card wants the issuer asked)");
    EXPECT_EQ(result["cardToAcquirer"]["95"], "0000048000 (online PIN entered, floor limit exceeded)");
    EXPECT_EQ(result["cardAtTheEnd"]["9F27"], "40 (TC, the card approves)");
    EXPECT_EQ(commands(object), "TLI TLR TLE;GCX;GOX;-;FCX;RMC;");
    EXPECT_EQ(pinPad_.screen().text, "APPROVED");
}

// Who declines, who is not asked, and what the card says to that.
TEST_F(SaleTest, TellsHowItEndedAndWhy) {
    constexpr const char* kByAcquirer = "declined by the acquirer";
    constexpr const char* kByCard = "declined by the card";
    const std::tuple<const char*, Arguments, const char*, std::string, std::string> cases[]{
        {"visa-signature", {"--host", "declines"}, "signature", "TLI TLR TLE;GCX;GOX;-;FCX;", kByAcquirer},
        {"declining-chip", {}, "none asked for", "GTS;GCX;GOX;-;FCX;", kByCard},
        {"visa-signature", {"--host", "unreachable"}, "signature", "GTS;GCX;GOX;-;FCX;", kByCard},
        {"visa-signature", {"--floor-limit", "12.35"}, "signature", "GTS;GCX;GOX;", "approved without the acquirer"},
    };
    for (auto [name, arguments, verification, steps, result] : cases) {
        pinPad_.when("GCX", Gestures().insert(card(name)));
        arguments.emplace_back("--keep-card");
        const Json object = sell(arguments);
        // Whoever wants it so leaves the card where it is.
        EXPECT_EQ(pinPad_.findings().size(), 1U);
        pinPad_.clear_findings();
        const bool approved = result.starts_with("approved");
        EXPECT_EQ(object["exit"], approved ? 0 : 5);
        EXPECT_EQ(object["result"]["verification"], verification);
        EXPECT_EQ(commands(object), steps);
        EXPECT_EQ(object["result"]["steps"].back()["result"], result);
        EXPECT_EQ(pinPad_.screen().text, approved ? "APPROVED" : "DECLINED");
        pinPad_.remove();
    }
}

// Whatever goes wrong from the acquirer's yes on, and before it. FCX that is not answered in time is cancelled, and the
// card given back; one that was not answered because the line is gone is the last that is said.
TEST_F(SaleTest, LeavesNoMoneyInDoubt) {
    const struct {
        std::vector<sim::Fault> faults;
        std::string_view card;
        const char* outcome;
        bool authorised;
        bool reverse;
        int exit;
        const char* steps;
        const char* why;
    } cases[]{
        {{{.kind = "no-answer", .command = "GCX"}},
         "visa-signature",
         "declined",
         false,
         false,
         4,
         "TLI TLR TLE;GCX;",
         ""},
        {{{.kind = "status", .command = "GOX", .status = 13}},
         "visa-signature",
         "declined",
         false,
         false,
         1,
         "GTS;GCX;GOX;RMC;",
         "no acquirer"},
        {{{.kind = "no-answer", .command = "FCX"}, {.kind = "wrong-id", .command = "FCX"}},
         "visa-signature",
         "unknown",
         true,
         true,
         6,
         "GTS;GCX;GOX;-;FCX;RMC;",
         "the card may have decided"},
        {{{.kind = "status", .command = "FCX", .status = 40}},
         "visa-signature",
         "declined",
         true,
         true,
         5,
         "GTS;GCX;GOX;-;FCX;RMC;",
         "it counts as declined"},
        {{{.kind = "no-answer", .command = "CLO"}},
         "declining-chip",
         "declined",
         true,
         true,
         5,
         "GTS;GCX;GOX;-;FCX;RMC;",
         "declined by the card"},
        {{{.kind = "no-answer", .command = "RMC"}},
         "visa-signature",
         "approved",
         true,
         false,
         0,
         "GTS;GCX;GOX;-;FCX;RMC;",
         "the card has approved it"},
        {{{.kind = "hang-up", .command = "FCX", .time = std::chrono::seconds(1)}},
         "visa-signature",
         "unknown",
         true,
         true,
         6,
         "GTS;GCX;GOX;-;FCX;",
         "the card may have decided"},
    };
    for (const auto& each : cases) {
        for (const sim::Fault& fault : each.faults) {
            SCOPED_TRACE(fault.kind + " " + fault.command);
            pinPad_.inject(fault);
            pinPad_.when("GCX", Gestures().insert(sim::Cards::standard().at(std::string(each.card))));
            pinPad_.when("RMC", Gestures().remove());
            const support::Elapsed elapsed;
            const Json object = sell({"--timeout", "2"});
            EXPECT_TRUE(elapsed.between({}, std::chrono::seconds(25)));
            const Json& result = object["result"];
            EXPECT_EQ(object["exit"], each.exit) << object;
            EXPECT_EQ(result["outcome"], each.outcome);
            EXPECT_EQ(result["authorised"], each.authorised);
            EXPECT_EQ(result["reverse"], each.reverse);
            EXPECT_EQ(commands(object), each.steps) << object;
            EXPECT_NE(result.value("why", "").find(each.why), std::string::npos) << result;
            EXPECT_EQ(object.contains("error"), each.exit != 0 && each.card != "declining-chip") << object;
            pinPad_.remove();
        }
    }
}

TEST_F(SaleTest, TakesStripesAndContactlessCards) {
    pinPad_.when("GCX", Gestures().swipe(card("mastercard-magnetic")));
    const Json stripe = sell({});
    EXPECT_EQ(stripe["result"]["card"]["readBy"], "magnetic stripe");
    EXPECT_EQ(stripe["result"]["card"]["track2"], "withheld");
    EXPECT_EQ(commands(stripe), "TLI TLR TLE;GCX;-;");
    pinPad_.when("GCX", Gestures().tap(card("elo-contactless")));
    const Json tapped = sell({"--host", "declines"});
    EXPECT_EQ(tapped["exit"], 5);
    EXPECT_EQ(commands(tapped), "GTS;GCX;GOX;-;");
}

TEST_F(SaleTest, WithoutTablesExplainsWhatIsMissing) {
    pinPad_.insert(card("visa-chip"));
    pinPad_.when("RMC", Gestures().remove());
    const Ended ended = run({"sale", "--amount", "1"});
    EXPECT_EQ(ended.exit, 1);
    EXPECT_NE(ended.err.find("TABERR"), std::string::npos) << ended.err;
    EXPECT_NE(ended.err.find("quorvel tables load"), std::string::npos) << ended.err;
}

TEST_F(SaleTest, CardTellsOfTheCard) {
    pinPad_.when("GCX", Gestures().swipe(card("visa-magnetic")));
    const Ended ended = run({"card"});
    EXPECT_EQ(ended.exit, 0) << ended.err;
    EXPECT_NE(ended.out.find("Card number  401288******1881\n"), std::string::npos) << ended.out;
    pinPad_.when("GCX", Gestures().swipe(card("visa-magnetic")));
    EXPECT_EQ(run_json({"card", "--reveal"})["result"]["cardNumber"], "4012888888881881");
    // A chip has to leave the reader, also one that says nothing.
    run({"tables", "load", QUORVEL_TABLES});
    for (const auto& [name, exit] : {std::pair("visa-chip", 0), {"mute-chip", 1}}) {
        pinPad_.when("GCX", Gestures().insert(card(name)));
        pinPad_.when("RMC", Gestures().remove());
        EXPECT_EQ(run({"card"}).exit, exit);
        EXPECT_FALSE(pinPad_.board().state().cardInserted);
    }
}

}  // namespace
