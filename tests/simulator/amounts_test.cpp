// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/amounts/amounts.h"

#include <algorithm>
#include <map>
#include <thread>

#include "simulator/scenario/performance.h"
#include "tests/simulator/fixture.h"
#include "tests/simulator/guide.h"

using namespace quorvel::sim;

namespace {

TEST(Guide, HasTheTableOfAmounts) {
    std::vector<std::vector<std::string>> due;
    due.reserve(std::size(kCourses));
    for (const Course& each : kCourses) { due.push_back({fmt::format(".{:02}", each.cents), std::string(each.title)}); }
    EXPECT_EQ(table_of_guide("amounts.md", "| cents |"), due);
}

// A till that knows nothing of the cardholder, who needs no hand of the tests.
class AmountsTest : public PinPadTest {
protected:
    void play_amounts() {
        PinPad::Options options{.device = loaded_device(), .second = std::chrono::milliseconds(1)};
        options.companion = &amounts_;
        options.patience = std::chrono::seconds(300);
        play(std::move(options));
    }

    // The PIN pad goes before its companion does.
    void TearDown() override {
        PinPadTest::TearDown();
        pinPad_.reset();
    }

    // What each command was answered with, and what the chip's decisions were; a line that fails ends it with "!".
    std::string pay(unsigned amount) {
        std::string went = read(amount);
        // A till asks again for a card that was not taken.
        if (went >= "GCX060") { went += " " + read(amount); }
        if (!went.ends_with("chip")) { return went + give_back(); }
        const std::string first = step(
            "GOX", "0010 0002"_hex + "03" + "0002 0001"_hex + "3" + "0009 0002"_hex + "00" + "0018 0005"_hex + "10000");
        went += " " + first;
        if (first.starts_with("GOX000:2")) {
            went += " " + step("FCX", "0019 0004"_hex + "0000" + "001C 0002"_hex + "00");
        }
        return went + give_back();
    }

    std::string read(unsigned amount) {
        const std::string fields =
            "0015 0006"_hex + "240229" + "0016 0006"_hex + "235958" + "0013 000C"_hex + fmt::format("{:012}", amount);
        std::string answer = ask(fmt::format("GCX{:03}{}", fields.size(), fields));
        if (answer.substr(3, 3) != "000") { return answer; }
        return "GCX" + std::string(answer.substr(13, 2) == "00" ? "-stripe" : "-chip");
    }

    std::string step(const std::string& id, const std::string& fields) {
        const size_t before = faults();
        host_->send(frame(fmt::format("{}{:03}{}", id, fields.size(), fields)));
        // The line that goes right after it may take it along.
        if (host_->receive(1) != kAck) { EXPECT_EQ(struck(), "hang-up"); }
        while (faults() == before && !has_answered(id)) { std::this_thread::yield(); }
        if (faults() != before) {
            // The notice about the PIN.
            if (id == "GOX") { static_cast<void>(hear()); }
            return id + "!";
        }
        std::string answer = hear();
        while (answer.starts_with("NTM")) { answer = hear(); }
        return answer.substr(0, 6) + (answer.size() > 13 ? ":" + answer.substr(13) : "");
    }

    std::string give_back() {
        if (faults() != 0) { return ""; }
        return " " + ask("RMC032" + std::string(32, 'X'));
    }

    [[nodiscard]] size_t count(const auto& is) const {
        const std::vector<Traffic> traffic = pinPad_->traffic();
        return static_cast<size_t>(std::ranges::count_if(traffic, is));
    }
    [[nodiscard]] size_t faults() const {
        return count([](const Traffic& each) { return each.words.find("(fault: ") != std::string::npos; });
    }
    // The last word is the PIN pad's, and no notice.
    [[nodiscard]] bool has_answered(const std::string& id) const {
        const std::vector<Traffic> traffic = pinPad_->traffic();
        return traffic.back().sender == Sender::kPinPad && traffic.back().words.starts_with(id);
    }
    [[nodiscard]] std::string struck() const {
        for (const Traffic& each : pinPad_->traffic()) {
            const size_t at = each.words.find("(fault: ");
            if (at != std::string::npos) { return each.words.substr(at + 8, each.words.size() - at - 9); }
        }
        return "";
    }

    Amounts amounts_{std::chrono::milliseconds(1)};
};

TEST_F(AmountsTest, GoesAsTheCentsSay) {
    const std::map<unsigned, std::string> due{
        {0, "GCX-chip GOX000:200001* FCX000:000 RMC000"},
        {1, "GCX-chip GOX000:201000 FCX000:000 RMC000"},
        {2, "GCX-chip GOX000:210000 FCX000:000 RMC000"},
        {3, "GCX-stripe RMC000"},
        {10, "GCX-chip GOX000:100000 RMC000"},
        {11, "GCX-chip GOX000:200000 FCX000:001 RMC000"},
        {20, "GCX-chip GOX043 RMC000"},
        {21, "GCX-chip GOX000:200001* FCX043 RMC000"},
        {30, "GCX-chip GOX000:201100 FCX000:000 RMC000"},
        {31, "GCX-chip GOX000:100310 RMC000"},
        {32, "GCX-chip GOX013 RMC000"},
        {33, "GCX-chip GOX000:210000 FCX000:000 RMC000"},
        {34, "GCX-chip GOX012 RMC000"},
        {40, "GCX012 RMC000"},
        {50, "GCX-chip GOX! no-answer"},
        {51, "GCX-chip GOX000:200001* FCX! no-answer"},
        {52, "GCX-chip GOX000:200001* FCX! bad-crc"},
        {53, "GCX-chip GOX000:200001* FCX! delay"},
        {54, "GCX-chip GOX000:200001* FCX! hang-up"},
        {60, "GCX085 GCX-chip GOX000:200001* FCX000:000 RMC000"},
        {61, "GCX086 GCX-chip GOX000:200000 FCX000:000 RMC000"},
        {62, "GCX-chip GOX000:200001* FCX000:000 RMC000"},
        {63, "GCX087 GCX-chip GOX000:210000 FCX000:000 RMC000"},
        {70, "GCX060 GCX-stripe RMC000"},
        {71, "GCX079 GCX079 RMC000"},
        {72, "GCX067 GCX067 RMC000"},
        {73, "GCX-chip GOX000:100000 RMC000"},
        {74, "GCX-chip GOX000:210000 FCX000:000 RMC000"},
        {99, "GCX-chip GOX000:200001* FCX000:000 RMC000"},
    };
    for (const Course& each : kCourses) { EXPECT_TRUE(due.contains(each.cents)) << each.cents; }
    play_amounts();
    for (const auto& [cents, course] : due) {
        SCOPED_TRACE(cents);
        std::string went = pay(1200 + cents);
        // The PIN block and its serial number are tested elsewhere.
        if (const size_t at = went.find("200001"); at != std::string::npos) {
            const size_t end = went.find(" FCX", at);
            went.replace(at + 6, end - at - 6, "*");
        }
        const std::string fault = struck();
        EXPECT_EQ(went + (fault.empty() ? "" : " " + fault), course);
        if (fault.empty()) { continue; }
        if (fault == "bad-crc") {
            // It could strike three times, and is not for the next payment.
            static_cast<void>(hear());
            EXPECT_EQ(pinPad_->faults().front().times, 2U);
            EXPECT_TRUE(pay(1200).ends_with(" FCX000:000"));
        }
        if (fault != "hang-up") { exchange(kCan, kEot); }
        play_amounts();
    }
}

// He leaves it to whoever acts in time, and goes on with what nobody does.
TEST_F(AmountsTest, YieldsToWhoeverActs) {
    play_amounts();
    pinPad_->when("GCX", inserted("visa-signature"));
    EXPECT_EQ(pay(1032), "GCX-chip GOX000:210000 FCX000:000 RMC000");
    pinPad_->when("GOX", Gestures().press(Key::kCancel));
    EXPECT_EQ(pay(1000), "GCX-chip GOX013 RMC000");
    // A payment that was given up does not count when the till begins anew.
    EXPECT_EQ(read(1061), "GCX086");
    call("CLO032" + std::string(32, 'X'), "CLO000");
    EXPECT_EQ(read(1061), "GCX086");
    EXPECT_EQ(read(1061), "GCX-chip");
    EXPECT_EQ(read(1060), "GCX085");
    call("CLO032" + std::string(32, 'X'), "CLO000");
    EXPECT_EQ(read(1060), "GCX085");
    call("GKY", "GKY000");
    EXPECT_EQ(ask("GPN129300"
                  "3030303030303030303030303030303000"
                  + padded("", 19) + "2" + padded("0412PIN", 36) + padded("0412AGAIN", 36))
                  .substr(0, 6),
              "GPN000");
    EXPECT_EQ(ask("GCD016" + "000B 0002 0007 000D 0001 00 000E 0001 04"_hex), "GCD000008" + "804D 0004"_hex + "1111");
}

TEST_F(AmountsTest, FindsTheAmountInCommandsOfFieldsToo) {
    play_amounts();
    const auto gcr = [](const std::string& amount) { return "GCR0400099" + amount + "240229235958          00"; };
    const std::string goc = "086000000001232000000000100010300" + std::string(32 + 21 + 2, '0') + "00500195003000";
    EXPECT_EQ(ask(gcr("000000001240")), "GCR012");
    EXPECT_EQ(ask(gcr("000000001232")).substr(0, 6), "GCR000");
    EXPECT_EQ(ask("GOC" + goc), "GOC013");
}

TEST_F(AmountsTest, GoesAlongWithAScenario) {
    Performance performance(
        Scenario::from_toml("s.toml",
                            "title = 'S'\nscript = [{ wait = 'GOX' }, { press = 'cancel' }]\n[device]\namounts = true\n"
                            "[[tables]]\nversion = 'T'\nrecords = [{ acquirer = 3, index = '01', body = 'XX' }]\n"));
    play(performance.prepare({}));
    EXPECT_EQ(pay(1000), "GCX-chip GOX013 RMC000");
    expect_findings(
        {{Kind::kLayout, "record 10301 of the tables: bytes of the application identifier: no such value"}});
    pinPad_->stop();
    host_.reset();
    pinPad_.reset();
}

}  // namespace
