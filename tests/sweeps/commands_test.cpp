// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cerrno>
#include <filesystem>
#include <regex>
#include <set>

#include "quorvel/additions.h"
#include "tests/sweeps/rig.h"

namespace {

using namespace sweeps;
using namespace support;

bool as_good(const Outcome& outcome, const Outcome& good) {
    return outcome.raised == Raised{} && outcome.status == good.status && outcome.results == good.results;
}

bool is_told_of_memory(const Outcome& outcome, const Outcome& good) {
    return outcome.noMemory ? outcome.raised == error(KOR_RESULT_MALLOC_ERROR, "") : as_good(outcome, good);
}

// The system's own code, in the words that the headers have for it.
bool is_as_the_system_says(const Outcome& outcome, const Outcome& good) {
    static const std::regex kWords(R"(\[KOR_RESULT_IO_ERROR\] (\w+\(\w*\) error: (5|11|19)))");
    return as_good(outcome, good) || std::regex_match(outcome.raised.message, kWords);
}

std::string content(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {(std::istreambuf_iterator<char>(file)), {}};
}

TEST(Commands, AreAllSwept) {
    std::set<std::string> swept;
    for (const Command& command : commands()) { swept.insert(command.name); }
    const std::regex prototype(R"((abecs_cmd_\w+)\(AbecsComm\* pinpad)");
    size_t count = 0;
    for (const auto& header : std::filesystem::directory_iterator(QUORVEL_HEADERS "/abecs/cmd")) {
        const std::string text = content(header.path());
        for (auto at = std::sregex_iterator(text.begin(), text.end(), prototype); at != std::sregex_iterator(); ++at) {
            EXPECT_TRUE(swept.contains((*at)[1])) << (*at)[1] << " has no row in tests/support/commands.inc";
            ++count;
        }
    }
    EXPECT_GT(count, 60U);
}

TEST(Commands, LoseNothingWhereverMemoryEnds) {
    Rig rig;
    for (const Command& command : commands()) {
        rig.begin(command);
        for (const Raise raise : kBothRaises) {
            for (const bool onwards : {false, true}) {
                for (size_t n = 1;; ++n) {
                    rig.fail_allocation(n, onwards);
                    if (!rig.run(raise, "allocation " + std::to_string(n), is_told_of_memory)) { return; }
                    if (!rig.allocation_failed()) { break; }
                }
            }
        }
    }
    EXPECT_GT(rig.runs(), 600U);
}

struct CallFault {
    const char* name;
    int fault;
    bool onwards;
    Rig::Judge judge;
};
const CallFault kCallFaults[] = {
    {"EINTR", EINTR, false, as_good},
    {"a short count", memory::kShort, false, as_good},
    {"EAGAIN", EAGAIN, false, is_as_the_system_says},
    {"EIO", EIO, false, is_as_the_system_says},
    {"ENODEV", ENODEV, false, is_as_the_system_says},
    {"ENODEV from there on", ENODEV, true, is_as_the_system_says},
    {"a hang-up", memory::kHangUp, false, is_as_the_system_says},
};

void fail_each_call(Rig& rig, const Command& command, bool wholeFrames) {
    rig.begin(command, wholeFrames);
    for (const CallFault& fault : kCallFaults) {
        for (const Raise raise : kBothRaises) {
            for (size_t n = 1, failed = 1; failed != 0; ++n) {
                rig.fail_call(n, fault.fault, fault.onwards);
                if (!rig.run(raise, fault.name + (" in call " + std::to_string(n)), fault.judge)) { return; }
                failed = rig.call_failed() ? 1 : 0;
            }
        }
    }
}

TEST(Commands, TellWhateverTheSystemSays) {
    Rig rig;
    for (const Command& command : commands()) { fail_each_call(rig, command, true); }
    EXPECT_GT(rig.runs(), 3000U);
}

// A write for each byte, and a read.
TEST(Commands, TellWhateverTheSystemSaysOfAByte) {
    Rig rig;
    for (const Command& command : commands()) {
        if (!command.takesLong) { fail_each_call(rig, command, false); }
    }
    rig.line.send_in_bytes(true);
    for (const char* name : {"abecs_cmd_gin", "abecs_cmd_gix", "abecs_cmd_gky", "abecs_cmd_gky_response"}) {
        fail_each_call(rig, command_of(name), false);
    }
    EXPECT_GT(rig.runs(), 20000U);
}

// Before the first byte, behind each one of either side, and not at all.
TEST(Commands, TellThatTheLineHungUp) {
    Rig rig;
    for (const Command& command : commands()) {
        if (command.takesLong) { continue; }
        rig.begin(command);
        for (const Raise raise : kBothRaises) {
            for (size_t bytes = 0; bytes == 0 || rig.hung_up(); ++bytes) {
                rig.hang_up_after(bytes);
                if (!rig.run(raise, "hung up after " + std::to_string(bytes), is_as_the_system_says)) { return; }
            }
        }
    }
    EXPECT_GT(rig.runs(), 5000U);
}

// Texts are broken into lines in the headers.
std::string in_one_line(const std::string& text) { return std::regex_replace(text, std::regex("\\s+"), " "); }

// A text between quotes in a header, cut where something is filled in.
using Pieces = std::vector<std::string>;

bool matches(const Pieces& pieces, std::string_view text) {
    if (!text.starts_with(pieces.front()) || !text.ends_with(pieces.back())) { return false; }
    size_t at = 0;
    for (const std::string& piece : pieces) {
        at = text.find(piece, at);
        if (at == std::string_view::npos) { return false; }
        at += piece.size();
    }
    return pieces.size() > 1 || at == text.size();
}

std::vector<Pieces> documented_texts() {
    std::string all;
    for (const auto& header : std::filesystem::recursive_directory_iterator(QUORVEL_HEADERS)) {
        if (header.path().extension() == ".h") { all += content(header.path()); }
    }
    all = in_one_line(std::regex_replace(all, std::regex(R"(\n\s*\* )"), " "));
    std::vector<Pieces> texts;
    const std::regex quoted(R"re("([^"]*)")re");
    const std::regex filled("%[0-9]*[hlz]*[a-zX]");
    for (auto at = std::sregex_iterator(all.begin(), all.end(), quoted); at != std::sregex_iterator(); ++at) {
        const std::string text = (*at)[1].str() + '\n';  // so that a piece is left behind the last one
        const Pieces pieces(std::sregex_token_iterator(text.begin(), text.end(), filled, -1), {});
        const bool says = std::any_of(pieces.begin(), pieces.end(), [](auto& piece) { return piece.size() > 5; });
        if (says) { texts.push_back(pieces); }
    }
    return texts;
}

// Whatever a PIN pad says, it comes to a status or to an error that the headers tell of, and none of these is a fault
// of the caller's, but where a field is longer than what there is for it.
bool is_documented(const Outcome& outcome, const Outcome&) {
    static const std::vector<Pieces> kTexts = documented_texts();
    static const std::set<int16_t> kCodes{KOR_RESULT_IO_ERROR, KOR_RESULT_PROTOCOL_ERROR, KOR_RESULT_ILLEGAL_ARGUMENT,
                                          KOR_RESULT_CRYPT_ERROR};
    if (outcome.raised.code == KOR_RESULT_OK) { return true; }
    std::string text = outcome.raised.message.substr(outcome.raised.message.find("] ") + 2) + '\n';
    text.erase(std::unique(text.begin(), text.end(), [](char a, char b) { return a == ' ' && b == ' '; }), text.end());
    return kCodes.contains(outcome.raised.code)
           && std::any_of(kTexts.begin(), kTexts.end(), [&](const Pieces& pieces) { return matches(pieces, text); });
}

// What may stand in the place of a byte, and in the place of a length of two or three.
const std::string kSpoilers[] = {"00"_hex,   "7F"_hex,   "80"_hex,   "FF"_hex,   "16"_hex,
                                 "17"_hex,   "13"_hex,   "0000"_hex, "03E6"_hex, "03E7"_hex,
                                 "03E8"_hex, "FFFF"_hex, "000",      "998",      "999"};

// Each byte of `good` in each of these ways; of what takes long, those that count what follows and a few more.
std::vector<std::string> spoilt(const std::string& good, bool takesLong = false) {
    std::vector<std::string> all{good + "0"};
    for (size_t at = 0; at < good.size(); ++at) {
        if (takesLong && (at < 6 || at > 12) && at % 100 != 0) { continue; }
        all.push_back(good.substr(0, at));
        all.push_back(good.substr(0, at) + good.substr(at + 1));
        all.push_back(good.substr(0, at + 1) + good.substr(at));
        for (const std::string& bytes : kSpoilers) {
            if (at + bytes.size() <= good.size()) { all.push_back(std::string(good).replace(at, bytes.size(), bytes)); }
        }
        for (const int by : {-1, 1}) {
            all.push_back(good);
            all.back()[at] = static_cast<char>(good[at] + by);
        }
    }
    return all;
}

// Under a right check, so that the whole of the library reads it.
TEST(Commands, StandEveryAnswer) {
    Rig rig;
    for (const Command& command : commands()) {
        if (command.answers.empty()) { continue; }
        rig.begin(command);
        for (const std::string& answer : spoilt(command.answers[0], command.takesLong)) {
            for (const Raise raise : kBothRaises) {
                Rig::Wire wire{frame(answer)};
                for (size_t i = 1; i < command.answers.size(); ++i) { wire.push_back(frame(command.answers[i])); }
                rig.say(wire);
                if (!rig.run(raise, "answer " + to_hex(answer), is_documented)) { return; }
            }
        }
    }
    EXPECT_GT(rig.runs(), 40000U);
}

// As it is on the line: most of them come damaged, three times.
bool is_damaged(const Outcome& outcome, const Outcome& good) {
    return outcome.raised == error(KOR_RESULT_TIMEOUT_ERROR, "No response in 3 attempts")
           || outcome.raised == error(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data")
           || (outcome.raised == Raised{} && outcome.status == ABECS_RSP_STAT_ST_PROCESSING)
           || is_documented(outcome, good);
}

TEST(Commands, StandEveryFrame) {
    Rig rig;
    for (const Command& command : commands()) {
        if (command.answers.size() != 1) { continue; }
        rig.begin(command);
        for (const std::string& wire : spoilt(frame(command.answers[0]), command.takesLong)) {
            rig.say({wire});
            if (!rig.run(Raise::kCaught, "frame " + to_hex(wire), is_damaged)) { return; }
        }
    }
    EXPECT_GT(rig.runs(), 20000U);
}

// In a session, with a right check of the frame: what is enciphered, and what is in there.
TEST(Commands, StandEveryAnswerOfASession) {
    Rig rig;
    rig.key = reinterpret_cast<const uint8_t*>(kSession.data());
    for (const char* name : {"abecs_cmd_gin", "abecs_cmd_gix", "abecs_cmd_gky_response"}) {
        const Command& command = command_of(name);
        rig.begin(command);
        Rig::Wire wires;
        for (const std::string& answer : spoilt(command.answers[0])) { wires.push_back(sealed(content_of(answer))); }
        for (std::string content : spoilt(content_of(command.answers[0]))) {
            content.resize((content.size() + 15) / 16 * 16);
            wires.push_back(sealed(content));
        }
        for (const std::string& bytes : spoilt(content_of(command.answers[0]))) {
            wires.push_back(encrypted_frame(bytes));
        }
        for (const std::string& wire : wires) {
            for (const Raise raise : kBothRaises) {
                rig.say({wire});
                if (!rig.run(raise, "sealed answer " + to_hex(wire), is_documented)) { return; }
            }
        }
    }
    EXPECT_GT(rig.runs(), 3000U);
}

}  // namespace
