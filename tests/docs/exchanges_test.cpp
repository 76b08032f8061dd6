// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cctype>
#include <cstdlib>
#include <fmt/format.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>

#include "simulator/cards/cards.h"
#include "simulator/pin_pad.h"
#include "tests/core/temp_dir.h"
#include "tests/docs/till.h"
#include "tests/simulator/bare_engine.h"
#include "tests/simulator/guide.h"
#include "tests/support/child.h"

// The exchanges on the pages of the commands are those of the library and the virtual PIN pad, in the words of
// `quorvel decode`. With QUORVEL_REWRITE in the environment they are written there anew.
namespace {

using namespace quorvel::sim;
using Json = nlohmann::ordered_json;

Card card(std::string_view name) { return Cards::standard().at(name); }

// What the cardholder does in it, at the command at which he does it.
struct Scene {
    std::string command;
    Gestures gestures;
};

const std::map<std::string, std::vector<Scene>> kScenes{
    {"cex", {{"CEX", Gestures().swipe(card("visa-magnetic"))}}},
    {"chp, a PIN", {{"CHP", Gestures().type("1234")}}},
    {"cke", {{"CKE", Gestures().press(Key::kF1)}}},
    {"cng", {{"GCX", Gestures().insert(card("visa-chip"))}}},
    {"fcx", {{"GCX", Gestures().insert(card("visa-chip"))}, {"GOX", Gestures().type("1234")}}},
    {"fcx, no answer", {{"GCX", Gestures().insert(card("visa-chip"))}, {"GOX", Gestures().type("1234")}}},
    {"fnc", {{"GCR", Gestures().insert(card("visa-chip"))}, {"GOC", Gestures().type("1234")}}},
    {"gcd", {{"GCD", Gestures().type("4711")}}},
    {"gcr", {{"GCR", Gestures().insert(card("mastercard-chip"))}}},
    {"gcx, a chip", {{"GCX", Gestures().insert(card("visa-chip"))}}},
    {"gcx, a mute chip", {{"GCX", Gestures().insert(card("mute-chip"))}}},
    {"gcx, a stripe", {{"GCX", Gestures().swipe(card("visa-magnetic"))}}},
    {"ged", {{"GCX", Gestures().insert(card("visa-chip"))}}},
    {"gen, 03/02", {{"GCX", Gestures().insert(card("visa-chip"))}}},
    {"gen, 04/03", {{"GEN", Gestures().type("1234")}}},
    {"gky", {{"GKY", Gestures().press(Key::kF2)}}},
    {"goc", {{"GCR", Gestures().insert(card("mastercard-chip"))}, {"GOC", Gestures().type("4321").type("1234")}}},
    {"gox", {{"GCX", Gestures().insert(card("visa-chip"))}, {"GOX", Gestures().type("1234")}}},
    {"gox, the card gone", {{"GCX", Gestures().insert(card("visa-chip"))}, {"GOX", Gestures().remove()}}},
    {"gpn", {{"GPN", Gestures().type("1234")}}},
    {"gtk", {{"GCX", Gestures().swipe(card("visa-magnetic"))}}},
    {"gtk, enciphered", {{"GCX", Gestures().swipe(card("visa-magnetic"))}}},
    {"mnu", {{"MNU", Gestures().choose(2)}}},
    {"rmc", {{"RMC", Gestures().remove()}}},
};

// Those in which a card of the slot's own is spoken to.
bool needs_chip(const std::string& exchange) {
    return exchange.starts_with("gen, 04") || exchange.starts_with("chp") || exchange == "rmc";
}
// Those with a key that is drawn: a page shows no more of it than its size.
bool is_drawn(const std::string& exchange) { return exchange == "opn, encrypted" || exchange.starts_with("dwk"); }

std::string upper(std::string text) {
    for (char& c : text) { c = static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }
    return text;
}

// What the line carried of the command, as a capture has it: arrows and bytes. A notice belongs to what waits.
std::vector<std::string> capture(const std::string& exchange, const std::vector<Traffic>& traffic) {
    const std::string id = upper(exchange.substr(0, 3));
    std::vector<std::string> lines;
    bool own = false;
    for (const Traffic& each : traffic) {
        if (each.wire.size() == 1) { continue; }
        const bool host = each.sender == Sender::kHost;
        if (host) { own = each.words.starts_with(id); }
        if (own) { lines.push_back(fmt::format("{} {:02X}", host ? '>' : '<', fmt::join(each.wire, ""))); }
    }
    return lines;
}

// Of what is drawn the beginning, and how much there is.
std::string shortened(const std::string& line) {
    constexpr size_t kShort = 40;
    constexpr size_t kHead = 18;
    return line.size() <= kShort ? line : fmt::format("{} .. ({} bytes)", line.substr(0, kHead), line.size() / 2 - 1);
}
Json shortened(const Json& contents) {
    constexpr size_t kLong = 32;
    if (contents.is_string()) {
        const auto text = contents.get<std::string>();
        return text.size() < kLong ? contents : Json(fmt::format(".. ({} characters)", text.size()));
    }
    Json all = contents;
    for (auto& each : all) { each = shortened(each); }
    return all;
}

std::string value_words(const Json& value) {
    if (value.is_string()) { return value.dump(-1, ' ', true); }
    if (!value.is_object()) { return value.dump(); }
    std::string all;
    for (const auto& [name, inner] : value.items()) {
        all += fmt::format("{}{} {}", all.empty() ? "" : ", ", name, value_words(inner));
    }
    return "{" + all + "}";
}

// `GIN device information: GIN_ACQIDX "00"`, `GIN device information, 000 ST_OK: GIN_DATA "QUORVEL"`.
std::string words(const Json& frame, const Json& contents) {
    std::string text = frame["what"].get<std::string>();
    if (const Json& status = frame["status"]; status.is_object()) {
        text += fmt::format(", {:03} {}", status["code"].get<int>(), status["name"].get<std::string>());
    }
    const std::string all = contents.is_object() ? value_words(contents) : "{" + contents.get<std::string>() + "}";
    return all == "{}" ? text : text + ": " + all.substr(1, all.size() - 2);
}

// With what the tool says below each line of bytes.
std::string decoded(const std::vector<std::string>& lines, bool drawn) {
    const TempDir folder;
    const std::string file = folder.file("capture", fmt::format("{}\n", fmt::join(lines, "\n")));
    support::Child tool({QUORVEL_CLI, "decode", "--reveal", "--json", "--file", file});
    EXPECT_EQ(tool.wait(), 0) << tool.errors();
    const Json frames = Json::parse(tool.output())["result"]["frames"];
    EXPECT_EQ(frames.size(), lines.size());
    std::string text;
    for (size_t i = 0; i < frames.size() && i < lines.size(); ++i) {
        const Json& contents = frames[i]["contents"];
        text += fmt::format("{}\n  {}\n", drawn ? shortened(lines[i]) : lines[i],
                            words(frames[i], drawn ? shortened(contents) : contents));
    }
    return text;
}

std::string exchange_of(const std::string& exchange) {
    PinPad::Options options{.device = loaded_device(), .seed = 1};
    options.clock = [] { return std::chrono::sys_days(std::chrono::year(2026) / 7 / 14); };
    if (needs_chip(exchange)) {
        Card inside{.pan = "4111111111111111", .chip = Chip::standard()};
        options.device.chip = options.device.lastCard = std::move(inside);
    }
    PinPad pinPad(std::move(options));
    pinPad.start();
    if (const auto found = kScenes.find(exchange); found != kScenes.end()) {
        for (const Scene& scene : found->second) { pinPad.when(scene.command, scene.gestures); }
    }
    till::play(exchange, pinPad.path());
    pinPad.stop();
    EXPECT_TRUE(pinPad.plans().empty()) << "the cardholder was not asked";
    return decoded(capture(exchange, pinPad.traffic()), is_drawn(exchange));
}

std::string content(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

class Exchanges : public testing::TestWithParam<std::string> {};

TEST_P(Exchanges, StandOnThePagesAsTheyCrossTheLine) {
    const std::string& exchange = GetParam();
    const std::string path = fmt::format("{}/{}.md", QUORVEL_DOCS "/commands", exchange.substr(0, 3));
    const std::string head = fmt::format("<!-- exchange: {} -->\n```\n", exchange);
    std::string page = content(path);
    const size_t at = page.find(head);
    ASSERT_NE(at, std::string::npos) << path << " has no place for it: " << head;
    const size_t from = at + head.size();
    const size_t size = page.find("```\n", from) - from;
    const std::string due = exchange_of(exchange);
    if (std::getenv("QUORVEL_REWRITE") != nullptr) {
        std::ofstream(path) << page.replace(from, size, due);
        return;
    }
    EXPECT_EQ(page.substr(from, size), due) << "Run " << exchange << " with QUORVEL_REWRITE=1 to write it anew.";
}

std::string title(const testing::TestParamInfo<std::string>& info) {
    std::string text;
    for (const char c : info.param) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
            text += c;
        } else if (c == ' ') {
            text += '_';
        }
    }
    return text;
}
INSTANTIATE_TEST_SUITE_P(Pages, Exchanges, testing::ValuesIn(till::exchanges()), title);

#ifdef QUORVEL_READ_CARD
// What the README shows, in each of its languages.
TEST(Readme, ReadsACard) {
    const std::vector<std::vector<std::string>> programs{
#include "programs.inc"
    };
    for (const std::vector<std::string>& program : programs) {
        PinPad pinPad({.device = loaded_device()});
        pinPad.start();
        pinPad.when("GCX", Gestures().insert(card("visa-chip")));
        std::vector<std::string> command = program;
        command.push_back(pinPad.path());
        support::Child till(command);
        EXPECT_EQ(till.wait(), 0) << till.errors();
        EXPECT_EQ(till.output(), "411111******1111\n") << program.back();
        EXPECT_EQ(pinPad.screen().text, "THANK YOU");
        pinPad.inject({.kind = "status", .command = "GCX", .status = 41});
        support::Child refused(command);
        EXPECT_EQ(refused.wait(), 1);
        EXPECT_NE(refused.errors().find("MCDATAERR"), std::string::npos) << program.back() << refused.errors();
    }
    for (std::vector<std::string> program : programs) {
        program.emplace_back("/dev/nowhere");
        support::Child lost(program);
        EXPECT_EQ(lost.wait(), 1);
        EXPECT_NE(lost.errors().find("No such port: /dev/nowhere"), std::string::npos) << lost.errors();
    }
}
#endif

// The record that a page shows is made of the fields that it lists, where it says that they stand, and says to the
// virtual PIN pad what the page says.
TEST(Records, AreLaidOutAsThePageTellsIt) {
    const auto fields = table_of_guide("commands/tables-records.md", "| at | field |");
    ASSERT_EQ(fields.size(), kRecordLayout.size());
    constexpr size_t kHead = 8;
    std::string body;
    for (size_t i = 0; i < fields.size(); ++i) {
        const RecordRow& row = kRecordLayout[i];
        const std::string& shown = fields[i].at(5);
        std::string value = shown.substr(1, shown.size() - 2);
        const std::vector<std::string> due{std::to_string(kHead + body.size() + 1), std::string(row.name),
                                           std::to_string(row.width),
                                           std::string(1, "NHA"[static_cast<size_t>(row.kind)])};
        EXPECT_EQ(std::vector(fields[i].begin(), fields[i].begin() + 4), due);
        value.resize(row.width, ' ');
        body += value;
    }
    const std::string record = fmt::format("{:03}10301{}", kHead + body.size(), body);
    EXPECT_NE(content(QUORVEL_DOCS "/commands/tables-records.md").find("```\n" + record + "\n```"), std::string::npos);
    const TableRecord read(Bytes(body.begin(), body.end()));
    EXPECT_TRUE(read.unreadable().empty());
    EXPECT_EQ(read.text(RecordField::kLabel), "VISA CREDITO    ");
    EXPECT_EQ(read.limit(RecordField::kContactlessLimit), 20000U);
    EXPECT_EQ(read.text(RecordField::kOfflineCodes), "Y1Z1Y3Z3");
}

}  // namespace
