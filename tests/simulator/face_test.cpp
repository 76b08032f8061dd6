// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/face/face.h"

#include <fstream>
#include <set>

#include "simulator/face/display.h"
#include "tests/simulator/fixture.h"

#define NCURSES_NOMACROS
#include <curses.h>

using namespace quorvel::sim;

namespace {

// The picture as a terminal with ASCII only would have it.
std::string all(const Canvas& canvas) {
    std::string text;
    for (size_t i = 0; i < canvas.size().rows; ++i) {
        for (size_t j = 0; j < canvas.size().columns; ++j) {
            const char32_t character = canvas.at(i, j).character;
            text += character < 0x80 ? static_cast<char>(character) : character == U'│' ? '|' : '#';
        }
        text += '\n';
    }
    return text;
}

void expect_parts(const Canvas& canvas, const std::vector<std::string>& parts) {
    const std::string text = all(canvas);
    for (const std::string& due : parts) { EXPECT_NE(text.find(due), std::string::npos) << due << "\n" << text; }
}

TEST(FaceKeys, MeanOneThingEachAndStandInTheGuide) {
    const std::vector<std::pair<int, std::optional<Deed>>> cases{
        {'\r', Key::kEnter}, {0x7F, Key::kClear}, {0x1B, Key::kCancel},     {'D', Key::kF4},
        {'Q', Move::kLeave}, {'x', std::nullopt}, {KEY_F(5), std::nullopt},
    };
    for (const auto& [code, deed] : cases) { EXPECT_EQ(deed_of(code), deed) << code; }
    std::ifstream file(QUORVEL_DOCS "/virtual-pin-pad.md");
    const std::string guide(std::istreambuf_iterator<char>(file), {});
    std::set<int> codes;
    for (const Binding& binding : key_map()) {
        EXPECT_TRUE(codes.insert(binding.code).second) << binding.code;
        const std::string due = fmt::format("{:6}{}", binding.caption, binding.meaning);
        EXPECT_TRUE(binding.caption.empty() || guide.find(due) != std::string::npos) << due;
    }
}

TEST(FaceDisplay, ShowsWhatADisplayOfThatSizeWould) {
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
    view.session = "plain session";
    view.tables = "TABLES0001, 12 records";
    view.inserted = "inserted-card";
    for (int i = 0; i < 40; ++i) { view.cards.push_back({"card-" + std::to_string(i), true, i == 30, false}); }
    view.taken = 30;
    view.trace = {{Feed::Entry::Kind::kHost, "DSP: \"A" + std::string(40, ' ') + "Z\""},
                  {Feed::Entry::Kind::kFinding, "layout: DSP: one byte too many"}};
    view.findings = {"layout: DSP: one byte too many"};
    view.findingCount = 17;
    return view;
}

TEST(FacePicture, HasAllOnAUsualTerminalAndBreaksTheTraceBetweenWordsWhereItCan) {
    View view = busy_view();
    expect_parts(paint(view, {24, 80}),
                 {"/dev/pts/7", "magnetic has no chip", "APROXIME, INSIRA", "GKY wait for a key", "plain session",
                  "TABLES0001, 12 records", "r     reset", "reader: inserted-card", "> card-30                s i -",
                  "  card-31                s - -", "Enter ENTER", "i     insert, take out", "> DSP: \"A # Z\"",
                  "! layout: DSP: one byte too many", "Findings: 17"});
    view.trace = {{Feed::Entry::Kind::kHost, std::string(40, 'a') + " bbbbbb " + std::string(60, 'c')}};
    expect_parts(paint(view, {24, 80}),
                 {"|> " + std::string(40, 'a') + "    |", "|  bbbbbb " + std::string(37, 'c') + "|"});
}

TEST(FacePicture, ComesDownToTheDisplayOnTerminalsOfAnySize) {
    View view = busy_view();
    for (const Size textSize : {Size{4, 16}, Size{8, 21}, Size{99, 99}}) {
        view.textSize = textSize;
        for (size_t rows = 0; rows < 40; rows += rows < 6 ? 1 : 3) {
            for (size_t columns = 0; columns < 120; columns += 7) {
                const Canvas canvas = paint(view, {rows, columns});
                if (rows >= 3 && columns >= 16) { expect_parts(canvas, {"APROXIME, INSIRA"}); }
            }
        }
    }
}

// The borders of a box whose corner is there, and what stands in it.
struct Box {
    std::string heading;
    std::string inside;
};

Box box_at(const Canvas& canvas, size_t top, size_t left) {
    const std::string text = all(canvas);
    const size_t width = canvas.size().columns + 1;
    size_t right = left + 1;
    while (canvas.at(top, right).character != U'┐') { ++right; }
    size_t bottom = top + 1;
    while (canvas.at(bottom, left).character != U'└') { ++bottom; }
    Box box{.heading = text.substr(top * width + left + 1, right - left - 1), .inside = ""};
    std::erase(box.heading, '#');
    for (size_t row = top + 1; row < bottom; ++row) {
        box.inside += text.substr(row * width + left + 1, right - left - 1) + "\n";
    }
    return box;
}

TEST(FacePicture, HasInEachBoxWhatItIsForOrNoBoxWhateverTheSize) {
    View scrolled = busy_view();
    scrolled.scrolled = true;
    View silent = busy_view();
    silent.trace.clear();
    silent.findings.clear();
    for (const View& view : {busy_view(), scrolled, silent}) {
        const std::string traced = view.trace.empty() ? "nothing yet" : "! layout: DSP";
        const std::vector<std::pair<std::string, std::string>> boxes{
            {" PIN pad ", "APROXIME, INSIRA"}, {" Keys ", "switch off"}, {" Cards ", "> card-30"},
            {" Findings: 17 ", "layout: DSP"}, {" Trace ", traced},      {" Trace, End goes to the newest ", traced}};
        std::set<std::string> seen;
        for (size_t rows = 5; rows <= 60; rows += rows < 30 ? 1 : 10) {
            for (size_t columns = 20; columns <= 200; columns += columns < 70 ? 1 : 10) {
                SCOPED_TRACE(fmt::format("{} rows, {} columns", rows, columns));
                const Canvas canvas = paint(view, {rows, columns});
                expect_parts(canvas, {"APROXIME, INSIRA"});
                for (size_t i = 0; i < rows * columns; ++i) {
                    if (canvas.at(i / columns, i % columns).character != U'┌') { continue; }
                    const Box box = box_at(canvas, i / columns, i % columns);
                    const auto due = std::ranges::find(boxes, box.heading, &decltype(boxes)::value_type::first);
                    ASSERT_NE(due, boxes.end()) << box.heading;
                    EXPECT_NE(box.inside.find(due->second), std::string::npos) << box.heading << box.inside;
                    seen.insert(box.heading);
                }
            }
        }
        EXPECT_EQ(seen.size(), view.scrolled ? 6U : view.findings.empty() ? 4U : 5U);
    }
}

class FaceTest : public PinPadTest {
protected:
    FaceTest() {
        PinPad::Options options;
        feed_.listen(options);
        play(std::move(options));
    }
    void TearDown() override {
        PinPadTest::TearDown();
        pinPad_.reset();
    }

    Feed feed_;
    const Cards cards_ = Cards::from_toml(
        "[a-stripe]\npan = \"4012888888881881\"\ntrack2 = \"4012888888881881=3012\"\n"
        "[b-chip]\npan = \"4111111111111111\"\n[b-chip.chip]\n");
};

TEST_F(FaceTest, UsesTheCardInTheHandWhereItFits) {
    Face face(*pinPad_, cards_, feed_);
    const auto expectRemark = [&](Move move, const std::string& due) {
        face.perform(move);
        EXPECT_EQ(face.view(9).remark, due);
    };
    expectRemark(Move::kInsertOrTakeOut, "a-stripe has no chip");
    exchange(frame("CKE0040020"), kAck);
    face.perform(Move::kPreviousCard);
    expectRemark(Move::kSwipe, "b-chip has no stripe");
    // The feed tells of every change, so none is missed.
    pollfd changes{feed_.wake_up().get(), POLLIN, 0};
    while (face.view(1).waiting.empty() && poll(&changes, 1, 20000) == 1) { feed_.wake_up().clear(); }
    EXPECT_EQ(face.view(9).waiting, "CKE wait for an event");
    face.perform(Move::kInsertOrTakeOut);
    expect(frame("CKE00000221"));
    EXPECT_EQ(face.view(9).inserted, "b-chip");
    EXPECT_EQ(face.view(9).waiting, "");
    exchange(frame("CKE0040010"), kAck);
    face.perform(Move::kInsertOrTakeOut);
    expect(frame("CKE00000220"));
    EXPECT_EQ(face.view(9).inserted, "");
    exchange(frame("CKE0040100"), kAck);
    expectRemark(Move::kTap, "b-chip has no antenna");
    face.perform(Move::kNextCard);
    face.perform(Move::kSwipe);
    expect(
        frame("CKE000225100" + padded("", 76) + "21" + padded("4012888888881881=3012", 37) + "000" + padded("", 104)));
}

TEST_F(FaceTest, ResetsThePinPadUnlessACommandWaits) {
    Face face(*pinPad_, cards_, feed_);
    EXPECT_EQ(face.view(9).session, "no session");
    exchange(kOpn, kAck + kOpnDone);
    for (const std::string request : {"TLI01200TABLES0001", "TLR0100100810301", "TLE"}) {
        call(request, request.substr(0, 3) + "000");
    }
    EXPECT_EQ(face.view(9).session, "plain session");
    EXPECT_EQ(face.view(9).tables, "TABLES0001, 1 records");
    exchange(frame("GKY"), kAck);
    face.perform(Move::kReset);
    EXPECT_EQ(face.view(9).remark, "a command waits");
    exchange(kCan, kEot);
    face.perform(Move::kReset);
    EXPECT_EQ(face.view(9).remark, "all is as at first");
    EXPECT_EQ(face.view(9).tables, "no tables");
    EXPECT_EQ(face.view(9).session, "no session");
}

TEST_F(FaceTest, ScrollsThroughTheTraceAndStaysThere) {
    Face face(*pinPad_, cards_, feed_);
    const auto newest = [&] { return face.view(3).trace.back().text; };
    const auto add = [&](int from, int to) {
        for (int i = from; i < to; ++i) { feed_.add({Feed::Entry::Kind::kFinding, std::to_string(i)}); }
    };
    add(0, 12);
    EXPECT_EQ(newest(), "11");
    face.perform(Move::kEarlier);
    EXPECT_EQ(newest(), "6");
    add(12, 20);
    EXPECT_EQ(newest(), "6");
    EXPECT_EQ(face.view(3).trace.front().text, "4");
    EXPECT_TRUE(face.view(3).scrolled);
    add(20, 5000);
    EXPECT_EQ(newest(), "3000");
    EXPECT_EQ(face.view(3).findingCount, 5000U);
    face.perform(Move::kNewest);
    EXPECT_EQ(newest(), "4999");
}

}  // namespace
