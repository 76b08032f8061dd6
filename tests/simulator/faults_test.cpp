// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <chrono>
#include <stdexcept>

#include "simulator/faults/fault_plan.h"
#include "tests/simulator/fixture.h"
#include "tests/support/elapsed.h"

using namespace std::chrono_literals;

using namespace quorvel::sim;

namespace {

class FaultsTest : public PinPadTest {
protected:
    // What comes after the command in place of what is due, which the line has nothing of before or behind it.
    void strike(const Fault& fault, const std::string& request, const std::string& due) {
        SCOPED_TRACE(fault.kind);
        pinPad_->inject(fault);
        exchange(frame(request), due);
        exchange(kCan, kEot);
        EXPECT_EQ(pinPad_->faults(), std::vector<Fault>{});
    }
};

TEST_F(FaultsTest, StrikeWhatGoesOverTheLineOnce) {
    play();
    strike({.kind = "no-answer"}, "OPN", kAck);
    strike({.kind = "garbage"}, "OPN", kAck + "55 AA 55"_hex + kOpnDone);
    strike({.kind = "bad-crc"}, "OPN", kAck + "\x16OPN000\x17\x77\x5F");
    strike({.kind = "truncated"}, "OPN", kAck + "\x16OPN0");
    strike({.kind = "wrong-id"}, "OPN", kAck + frame("XXX000"));
    strike({.kind = "status", .status = 42}, "GIN00204", kAck + frame("GIN042"));
    strike({.kind = "status"}, "GIN00204", kAck + frame("GIN000"));
    strike({.kind = "status", .command = "GKY", .status = 13, .before = true}, "GKY", kAck + frame("GKY013"));
    strike({.kind = "status", .status = 10, .before = true, .asError = true}, "OPN", kAck + frame("ERR010"));
    strike({.kind = "nak"}, "OPN", kNak);
    strike({.kind = "lost-ack"}, "OPN", kOpnDone);
    strike({.kind = "too-long"}, "GIN00204", kAck + frame("GIN000999ACQUIRER 04         001.00 2601010001A0000"));
    strike({.kind = "too-long"}, "GIX006" + "0001 0002 8001"_hex,
           kAck + frame("GIX000014" + "8001 FFFF"_hex + "QV00000001"));
}

TEST_F(FaultsTest, TakeTheirTime) {
    play();
    for (const auto& [kind, time] : {std::pair("delay", 300ms), {"slow-bytes", 30ms}, {"split", 300ms}}) {
        pinPad_->inject({.kind = kind, .time = time});
        const support::Elapsed elapsed;
        exchange(kOpn, kAck + kOpnDone);
        EXPECT_TRUE(elapsed.between(250ms, 5s)) << kind;
    }
}

TEST_F(FaultsTest, LeaveTheResponseWholeForItsRepetition) {
    play({.faults = {{.kind = "no-answer"}, {.kind = "bad-crc"}, {.kind = "split", .time = 1h}}});
    exchange(kOpn, kAck);
    exchange(kNak, "\x16OPN000\x17\x77\x5F");
    exchange(kNak, "\x16OPN0");
    exchange(kNak, kOpnDone);
}

TEST_F(FaultsTest, StrikeOnlyTheirCommandAndInTheirTurn) {
    play({.faults = {{.kind = "nak", .command = "GKY", .times = 2},
                     {.kind = "wrong-id", .command = "OPN", .every = 2, .times = 2},
                     {.kind = "no-answer", .command = "NTM"}}});
    pinPad_->when("GKY", Gestures().notify("NOT HEARD").press(Key::kF1));
    for (const char* due : {"OPN000", "XXX000", "OPN000", "XXX000", "OPN000", "OPN000"}) { call("OPN", due); }
    for (int i = 0; i < 2; ++i) { exchange(frame("GKY"), kNak); }
    call("GKY", "GKY004");
    pinPad_->inject({.kind = "wrong-id", .times = {}});
    for (int i = 0; i < 5; ++i) { call("OPN", "XXX000"); }
    pinPad_->clear_faults();
    call("OPN", "OPN000");
}

TEST_F(FaultsTest, LeaveUndoneWhatTheyRefuse) {
    play({.faults = {{.kind = "status", .command = "TLE", .status = 40, .before = true}}});
    call("TLI01203V000000001", "TLI000");
    call("TLE", "TLE040");
    call("GTS00203", "GTS021");
    call("TLE", "TLE000");
    call("GTS00203", "GTS000010V000000001");
}

TEST_F(FaultsTest, ShowInTheTraceAndKeepItsSecrets) {
    play({.faults = {{.kind = "bad-crc", .command = "OPN"}, {.kind = "garbage", .command = "GEN"}}});
    exchange(kOpn, kAck + "\x16OPN000\x17\x77\x5F");
    exchange(frame("GEN01302008K3000608"), kAck + "55 AA 55"_hex + frame("GEN000006003000"));
    pinPad_->stop();
    EXPECT_EQ(to_text(pinPad_->traffic().at(2)).substr(24),
              "< 16 4F 50 4E 30 30 30 17 77 5F\n  OPN 000 OK (fault: bad-crc)\n");
    EXPECT_EQ(to_text(pinPad_->traffic().at(5)).substr(24, 27), "< 55 AA 55 16 47 45 4E ... ");
    pinPad_.reset();
}

TEST(FaultPlan, StrikesByChanceAsItsSeedSays) {
    const auto strikes = [](uint32_t seed) {
        FaultPlan plan(seed);
        plan.add({.kind = "no-answer", .chance = 0.25, .times = {}});
        std::string drawn;
        for (int i = 0; i < 400; ++i) { drawn += plan.strike({.command = "GIN"}) ? '!' : '.'; }
        return drawn;
    };
    const std::string drawn = strikes(1);
    EXPECT_EQ(strikes(1), drawn);
    EXPECT_NE(strikes(2), drawn);
    const auto count = std::ranges::count(drawn, '!');
    EXPECT_TRUE(count > 60 && count < 140) << count;
}

TEST(FaultPlan, TakesNoFaultThatCannotBe) {
    const std::vector<std::pair<Fault, std::string>> cases{
        {{.kind = "gremlin"}, "there is no fault \"gremlin\""},
        {{.kind = "nak", .command = "GI"}, "a command's id has three characters"},
        {{.kind = "delay"}, "\"delay\" needs a time"},
        {{.kind = "nak", .time = 1ms}, "\"nak\" takes no time"},
        {{.kind = "status", .status = 1000}, "a status is from 0 to 999"},
        {{.kind = "nak", .status = 1}, "\"nak\" takes no status"},
        {{.kind = "nak", .before = true}, "\"nak\" strikes nothing before it is carried out"},
        {{.kind = "status", .asError = true}, "an error is what refuses a command before it is carried out"},
        {{.kind = "nak", .every = 0}, "every 0th occasion is none"},
        {{.kind = "nak", .chance = 0}, "a chance is above 0 and at most 1"},
        {{.kind = "nak", .chance = 1.5}, "a chance is above 0 and at most 1"},
        {{.kind = "nak", .times = 0}, "0 times is never"},
    };
    FaultPlan plan(1);
    for (const auto& [fault, due] : cases) {
        EXPECT_EQ(thrown<std::invalid_argument>([&, &wrong = fault] { plan.add(wrong); }), due);
    }
    EXPECT_EQ(plan.faults(), std::vector<Fault>{});
}

using SpeedTest = PinPadTest;

TEST_F(SpeedTest, TakesTheTimeOfTheLine) {
    play({.speed = 1200});
    const support::Elapsed elapsed;
    for (int i = 0; i < 4; ++i) { exchange(kOpn, kAck + kOpnDone); }
    EXPECT_TRUE(elapsed.between(4 * 10 * 10 * 1000ms / 1200, 5s));
}

TEST_F(SpeedTest, LetsCanEndAResponseThatIsOnItsWay) {
    play({.speed = 1200});
    host_->send("\x16GIN00200\x17\xEE\xCA");
    EXPECT_EQ(host_->receive(2), kAck + "\x16");
    host_->send(kCan);
    size_t more = 0;
    for (std::string byte = host_->receive(1); byte != kEot && !byte.empty(); byte = host_->receive(1)) { ++more; }
    EXPECT_LT(more, 80U);
    exchange(kNak + kCan, kEot);
    expect_findings({{Kind::kSequence, "NAK without a response before it"}});
}

}  // namespace
