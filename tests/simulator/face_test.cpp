// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/face/face.h"

#include <algorithm>
#include <csignal>
#include <fmt/format.h>
#include <fstream>
#include <gtest/gtest.h>
#include <poll.h>
#include <set>
#include <string>
#include <vector>

#include "simulator/face/display.h"
#include "tests/simulator/command_fixture.h"
#include "tests/simulator/terminal_program.h"

#define NCURSES_NOMACROS
#include <curses.h>

namespace quorvel::sim {

namespace {

using namespace std::string_literals;

// A row of the picture as a terminal with ASCII only would have it.
std::string row(const Canvas& canvas, size_t index) {
    std::string text;
    for (size_t i = 0; i < canvas.size().columns; ++i) {
        const char32_t character = canvas.at(index, i).character;
        text += character < 0x80 ? static_cast<char>(character) : character == U'│' ? '|' : '#';
    }
    return text;
}

std::string all(const Canvas& canvas) {
    std::string text;
    for (size_t i = 0; i < canvas.size().rows; ++i) text += row(canvas, i) + "\n";
    return text;
}

TEST(FaceKeysTest, MeansOneThingByEachKey) {
    const std::vector<std::pair<int, std::optional<Deed>>> cases{
        {'7', digit('7')},
        {'\n', Key::enter},
        {'\r', Key::enter},
        {0x7F, Key::clear},
        {0x1B, Key::cancel},
        {KEY_F(4), Key::f4},
        {'D', Key::f4},
        {KEY_DOWN, Key::down},
        {'i', Move::insertOrTakeOut},
        {'Q', Move::leave},
        {KEY_LEFT, Move::previousCard},
        {'x', std::nullopt},
        {KEY_F(5), std::nullopt},
    };
    for (const auto& [code, deed] : cases) EXPECT_EQ(deed_of(code), deed) << code;
    std::set<int> codes;
    for (const Binding& binding : key_map()) EXPECT_TRUE(codes.insert(binding.code).second) << binding.code;
}

TEST(FaceKeysTest, StandsInTheGuide) {
    std::ifstream file(QUORVEL_DOCS "/virtual-pin-pad.md");
    const std::string guide(std::istreambuf_iterator<char>(file), {});
    for (const Binding& binding : key_map()) {
        if (binding.caption.empty()) continue;
        const std::string due = fmt::format("{:6}{}", binding.caption, binding.meaning);
        EXPECT_NE(guide.find(due), std::string::npos) << due;
    }
}

TEST(FaceDisplayTest, ShowsWhatADisplayOfThatSizeWould) {
    struct Case {
        Screen::Content content;
        std::vector<DisplayLine> due;
    };
    const std::vector<std::string> menu{"TEA", "COFFEE", "WATER", "JUICE", "A LONG NAME"};
    const std::vector<Case> cases{
        {{.text = "APROXIME, INSIRAOU PASSE CART\xC3O"}, {{U"APROXIME, INSIRA"}, {U"OU PASSE CARTÃO"}, {}, {}}},
        {{.text = "A\r\rC\r"}, {{U"A"}, {}, {U"C"}, {}}},
        {{.text = "1\r2\r3\r4\r5"}, {{U"1"}, {U"2"}, {U"3"}, {U"4"}}},
        {{.text = "\x1B[2J"}, {{U"·[2J"}, {}, {}, {}}},
        {{.text = "PIN", .typed = "****"}, {{U"PIN"}, {U"      ****"}, {}, {}}},
        {{.text = "1\r2\r3\r4", .typed = "0123456789ABCDEFGH"}, {{U"1"}, {U"2"}, {U"3"}, {U"23456789ABCDEFGH"}}},
        {{.menu = menu, .selected = 1}, {{U"1>TEA", true}, {U"2 COFFEE"}, {U"3 WATER"}, {U"4 JUICE"}}},
        {{.text = "1\r2\r3", .menu = menu, .selected = 5}, {{U"1"}, {U"2"}, {U"4 JUICE"}, {U"5>A LONG NAME", true}}},
        {{.text = "T", .menu = {"TEA"}, .selected = 1}, {{U"T"}, {U"1>TEA", true}, {}, {}}},
        {{.media = "LOGO0001"}, {{U"   [LOGO0001]"}, {}, {}, {}}},
    };
    for (const auto& [content, due] : cases) {
        EXPECT_TRUE(display_lines(content, {4, 16}) == due) << content.text << content.media;
    }
    EXPECT_EQ(text_size("0820"), (Size{8, 20}));
}

View busy_view() {
    View view{.port = "/dev/pts/7", .remark = "magnetic has no chip", .screen = {.text = "APROXIME, INSIRA"}};
    view.waiting = "GKY wait for a key";
    view.inserted = "inserted-card";
    for (int i = 0; i < 40; ++i) view.cards.push_back({"card-" + std::to_string(i), true, i == 30, false});
    view.taken = 30;
    view.trace = {{Feed::Entry::Kind::host, "DSP: \"A" + std::string(40, ' ') + "Z\""},
                  {Feed::Entry::Kind::finding, "layout: DSP: one byte too many"}};
    view.findings = {"layout: DSP: one byte too many"};
    view.findingCount = 17;
    return view;
}

TEST(FacePictureTest, HasAllOnAUsualTerminal) {
    const Canvas canvas = paint(busy_view(), {24, 80});
    const std::string text = all(canvas);
    for (const char* due :
         {"/dev/pts/7", "magnetic has no chip", "APROXIME, INSIRA", "GKY wait for a key", "plain session",
          "reader: inserted-card", "> card-30                s i -", "  card-31                s - -", "Enter ENTER",
          "i     insert, take out", "> DSP: \"A # Z\"", "! layout: DSP: one byte too many", "Findings: 17"}) {
        EXPECT_NE(text.find(due), std::string::npos) << due << "\n" << text;
    }
}

TEST(FacePictureTest, BreaksTheTraceBetweenWordsWhereItCan) {
    View view = busy_view();
    view.trace = {{Feed::Entry::Kind::host, std::string(40, 'a') + " bbbbbb " + std::string(60, 'c')}};
    const std::string text = all(paint(view, {24, 80}));
    for (const std::string& due :
         {"|> "s + std::string(40, 'a') + "    |", "|  bbbbbb " + std::string(37, 'c') + "|"}) {
        EXPECT_NE(text.find(due), std::string::npos) << due << "\n" << text;
    }
}

TEST(FacePictureTest, ComesDownToTheDisplayOnTerminalsOfAnySize) {
    View view = busy_view();
    for (const Size textSize : {Size{4, 16}, Size{8, 21}, Size{99, 99}}) {
        view.textSize = textSize;
        for (size_t rows = 0; rows < 40; rows += rows < 6 ? 1 : 3) {
            for (size_t columns = 0; columns < 120; columns += 7) {
                const Canvas canvas = paint(view, {rows, columns});
                if (rows < 3 || columns < 16) continue;
                const std::string text = all(canvas);
                ASSERT_NE(text.find("APROXIME, INSIRA"), std::string::npos) << rows << " x " << columns << "\n" << text;
            }
        }
    }
}

class FaceTest : public CommandTest {
protected:
    FaceTest() {
        PinPad::Options options;
        feed_.listen(options);
        play(std::move(options));
    }
    void TearDown() override {
        CommandTest::TearDown();
        pinPad_.reset();
    }

    // The feed tells of every change, so none is missed.
    [[nodiscard]] std::string await_waiting(const Face& face) const {
        pollfd changes{feed_.wake_up().get(), POLLIN, 0};
        while (face.view(1).waiting.empty() && poll(&changes, 1, 20000) == 1) feed_.wake_up().clear();
        return face.view(1).waiting;
    }

    Feed feed_;
    const Cards cards_ = Cards::from_toml(
        "[a-stripe]\npan = \"4012888888881881\"\ntrack2 = \"4012888888881881=3012\"\n"
        "[b-chip]\npan = \"4111111111111111\"\n[b-chip.chip]\n");
};

TEST_F(FaceTest, UsesTheCardInTheHandWhereItFits) {
    Face face(*pinPad_, cards_, feed_);
    face.perform(Move::insertOrTakeOut);
    EXPECT_EQ(face.view(9).remark, "a-stripe has no chip");
    const std::string insertion = support::frame("CKE0040020"), removal = support::frame("CKE0040010");
    exchange(insertion, ack);
    face.perform(Move::previousCard);
    face.perform(Move::swipe);
    EXPECT_EQ(face.view(9).remark, "b-chip has no stripe");
    EXPECT_EQ(await_waiting(face), "CKE wait for an event");
    face.perform(Move::insertOrTakeOut);
    expect(support::frame("CKE00000221"));
    EXPECT_EQ(face.view(9).inserted, "b-chip");
    EXPECT_EQ(face.view(9).waiting, "");
    exchange(removal, ack);
    face.perform(Move::insertOrTakeOut);
    expect(support::frame("CKE00000220"));
    EXPECT_EQ(face.view(9).inserted, "");
    exchange(support::frame("CKE0040100"), ack);
    face.perform(Move::tap);
    EXPECT_EQ(face.view(9).remark, "b-chip has no antenna");
    face.perform(Move::nextCard);
    face.perform(Move::swipe);
    expect(support::frame("CKE000225100" + std::string(76, ' ') + "214012888888881881=3012" + std::string(16, ' ')
                          + "000" + std::string(104, ' ')));
    expect_findings({});
}

TEST_F(FaceTest, ScrollsThroughTheTraceAndStaysThere) {
    Face face(*pinPad_, cards_, feed_);
    const auto newest = [&] { return face.view(3).trace.back().text; };
    const auto add = [&](int from, int to) {
        for (int i = from; i < to; ++i) feed_.add({Feed::Entry::Kind::finding, std::to_string(i)});
    };
    add(0, 12);
    EXPECT_EQ(newest(), "11");
    face.perform(Move::earlier);
    EXPECT_EQ(newest(), "6");
    add(12, 20);
    EXPECT_EQ(newest(), "6");
    EXPECT_EQ(face.view(3).trace.front().text, "4");
    EXPECT_TRUE(face.view(3).scrolled);
    add(20, 5000);
    EXPECT_EQ(newest(), "3000");
    EXPECT_EQ(face.view(3).findingCount, 5000U);
    face.perform(Move::newest);
    EXPECT_EQ(newest(), "4999");
}

struct TerminalCase {
    const char* term;
    const char* locale;
    const char* frame;
    const char* leaving;
    int signal;
};

class FaceProgramTest : public testing::TestWithParam<TerminalCase> {};

TEST_P(FaceProgramTest, LetsAPersonPlayTheCardholderAndLeavesTheTerminalAsItWas) {
    const TerminalCase& c = GetParam();
    TerminalProgram program({"--face", "--trace"}, {"TERM="s + c.term, "LC_ALL="s + c.locale});
    const std::string ready = program.line();
    ASSERT_EQ(ready.rfind("READY /dev/pts/", 0), 0U) << ready;
    const std::string path = ready.substr(6);
    EXPECT_TRUE(program.await(path));
    EXPECT_FALSE(program.is_as_before());
    Host host(path);
    host.send(support::frame("DSP032APROXIME        " + "OU INSIRA       "s));
    EXPECT_TRUE(program.await("APROXIME")) << program.seen();
    EXPECT_EQ(host.receive(11), "\x06" + support::frame("DSP000"));
    host.send(support::frame("GKY"));
    EXPECT_EQ(host.receive(1), "\x06");
    // A function key, whose sequence begins like the key that stands for "cancel".
    program.type("\x1BOR");
    EXPECT_EQ(host.receive(10), support::frame("GKY006"));
    EXPECT_TRUE(program.await("GKY 006"));
    program.resize(12, 40);
    EXPECT_TRUE(program.await("findings: 0")) << program.seen();
    program.type(c.leaving);
    EXPECT_EQ(program.end(c.signal), 0);
    EXPECT_TRUE(program.is_as_before());
    EXPECT_NE(program.seen().find(c.frame), std::string::npos);
    const bool onlyAscii = std::ranges::all_of(program.seen(), [](char byte) { return (byte & 0x80) == 0; });
    EXPECT_EQ(onlyAscii, c.locale == "C"s);
}

INSTANTIATE_TEST_SUITE_P(Terminals, FaceProgramTest,
                         testing::Values(TerminalCase{"xterm-256color", "C.UTF-8", "┌─", "q", 0},
                                         TerminalCase{"xterm", "C", "+-", "\x03", 0},
                                         TerminalCase{"vt100", "C.UTF-8", "┌─", "", SIGTERM}));

TEST(FaceProgramTest, SaysThatATerminalCannotShowIt) {
    for (const char* term : {"dumb", "nonesuch"}) {
        TerminalProgram program({"--face"}, {"TERM="s + term});
        EXPECT_TRUE(
            program.await("quorvel-sim: the terminal cannot show a face: TERM names none that moves its cursor"));
        EXPECT_EQ(program.end(), 2);
        EXPECT_EQ(program.line(), "");
        EXPECT_TRUE(program.is_as_before());
    }
}

}  // namespace

}  // namespace quorvel::sim
