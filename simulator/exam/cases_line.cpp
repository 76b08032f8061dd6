// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <fmt/format.h>

#include "simulator/exam/cases.h"

namespace quorvel::sim::exam {

namespace {

using std::chrono::milliseconds;

struct Stage {
    const char* title;
    CommandIds commands;
    // What is at stake, and what a till must do when it cannot go on.
    const char* why;
    const char* must;
    bool optional = false;
    bool needsTables = false;
    // Whether its answer carries anything.
    bool answersData = false;
};

constexpr const char* kNoSaleYet = "Nobody was asked for money yet.";
constexpr const char* kEndUnpaid = "The till must end without a sale, and leave a PIN pad that the next one can use.";
constexpr const char* kDecided = "The sale is decided, and nothing that comes can change it.";
constexpr const char* kStaysPaid = "The till must say paid, whatever comes of this.";
constexpr const char* kAskedFor = "The card may have asked for the acquirer, but nobody can have told it.";
constexpr const char* kYesGiven =
    "The acquirer has said yes, and only the card's answer would tell whether the money has moved.";
constexpr const char* kSayUnknown =
    "The till must say that it does not know, or that there was no sale and a reversal is owed; never just not paid.";

const std::array kStages{
    Stage{"opening the session", {"OPN"}, kNoSaleYet, kEndUnpaid},
    Stage{"asking for the tables' version", {"GTS"}, kNoSaleYet, kEndUnpaid, true, true, true},
    Stage{"beginning a load of tables", {"TLI"}, kNoSaleYet, kEndUnpaid, true, true},
    Stage{"loading records", {"TLR"}, kNoSaleYet, kEndUnpaid, true, true},
    Stage{"ending a load of tables", {"TLE"}, kNoSaleYet, kEndUnpaid, true, true},
    Stage{"reading the card", kReading, kNoSaleYet, kEndUnpaid, false, false, true},
    Stage{"letting the card decide", kDeciding, kAskedFor, kEndUnpaid, false, false, true},
    Stage{"telling the card what the acquirer has said", kFinishing, kYesGiven, kSayUnknown, false, false, true},
    Stage{"having the card removed", kRemoving, kDecided, kStaysPaid, true},
    Stage{"closing the session", kClosing, kDecided, kStaysPaid, true},
};

struct Trouble {
    const char* title;
    const char* why;
    const char* kind;
    unsigned times = 1;
    milliseconds time{0};
    // Whether a till that keeps to the protocol notices nothing.
    bool harmless = false;
    bool onlyData = false;
    unsigned seconds = 5;
};

// An answer is sent four times at most.
constexpr unsigned kEachTime = 4;

constexpr const char* kGoOn = "The till must go on as if nothing had been: the sale is paid.";

constexpr std::array kTroubles{
    Trouble{"the answer is lost", "The command was carried out, and its answer never comes.", "no-answer", 1,
            milliseconds(0), false, false, 15},
    Trouble{"the answer is late", "The answer comes after a second and a half, which is no fault.", "delay", 1,
            milliseconds(1500), true},
    Trouble{"the answer is damaged once", "A bit was turned over, and the PIN pad would send it again.", "bad-crc", 1,
            milliseconds(0), true},
    Trouble{"the answer is damaged each time", "No attempt brings the answer whole.", "bad-crc", kEachTime},
    Trouble{"the answer is cut short once", "Half of the answer comes, and the PIN pad would send it again.",
            "truncated", 1, milliseconds(0), true},
    Trouble{"the confirmation is lost", "The command was carried out, and the byte that confirms it never comes.",
            "lost-ack", 1, milliseconds(0), false, false, 8},
    Trouble{"the command is refused once", "The command came damaged, and the PIN pad asks for it again.", "nak", 1,
            milliseconds(0), true},
    Trouble{"the command is refused three times", "No attempt brings the command whole, and it is not carried out.",
            "nak", 3},
    Trouble{"there is noise before the answer", "Bytes that mean nothing stand where an answer must begin.", "garbage"},
    Trouble{"the answer is to another command", "What comes is whole, and answers something that nobody asked.",
            "wrong-id"},
    Trouble{"the answer comes slowly", "Each byte takes its time, which is no fault.", "slow-bytes", 1, milliseconds(5),
            true},
    Trouble{"the line is cut instead of the answer",
            "The cable is out for a moment, and the PIN pad comes back without a session.", "hang-up", 1,
            milliseconds(300)},
    Trouble{"the answer claims to be longer than it is", "A length in it points beyond its end.", "too-long", 1,
            milliseconds(0), false, true},
};

bool is_last(const Stage& stage) { return stage.why == kDecided; }

void add(Family& family, const Stage& stage, const Trouble& trouble) {
    Case& each =
        by_chip(family.add(fmt::format("{}: {}", stage.title, trouble.title),
                           fmt::format("{} {}", trouble.why, stage.why), trouble.harmless ? kGoOn : stage.must));
    strike(each, stage.commands, {.kind = trouble.kind, .time = trouble.time, .times = trouble.times});
    each.about = stage.commands;
    each.optional = stage.optional;
    if (stage.needsTables) { each.needs.insert(Feature::kTables); }
    if (trouble.harmless || is_last(stage)) { each.goal = kMustBePaid; }
    each.pardonsSession = stage.commands.front() == "OPN" || stage.commands == kClosing;
    each.seconds = trouble.seconds;
}

void add_injured_answers(std::vector<Case>& all) {
    unsigned number = 0;
    for (const Stage& stage : kStages) {
        Family family(all, 2, ++number);
        for (const Trouble& trouble : kTroubles) {
            if (trouble.onlyData && !stage.answersData) {
                family.skip();
            } else {
                add(family, stage, trouble);
            }
        }
    }
}

// What the next customer finds.
void add_next_sales(std::vector<Case>& all) {
    static constexpr const char* kWhy = "The customer behind has nothing to do with it.";
    static constexpr const char* kMust = "The next sale at the same PIN pad must be paid as any other.";
    Family family(all, 2, 11);
    for (const size_t stage : {0U, 3U, 5U, 6U, 7U, 9U}) {
        for (const char* kind : {"no-answer", "hang-up"}) {
            const bool lost = kind == std::string_view("no-answer");
            Case& each = by_chip(family.add(
                fmt::format("the next sale, after {} {}", lost ? "a lost answer to" : "a cut in", kStages[stage].title),
                kWhy, kMust));
            strike(each, kStages[stage].commands, {.kind = kind, .time = milliseconds(lost ? 0 : 300)});
            if (kStages[stage].needsTables) { each.needs.insert(Feature::kTables); }
            each.about = kStages[stage].commands;
            each.optional = kStages[stage].optional;
            each.again = true;
            each.pardonsSession = stage == 0 || stage == 9;
            each.seconds = lost ? 16 : 6;
        }
    }
}

}  // namespace

void add_line_troubles(std::vector<Case>& all) {
    add_injured_answers(all);
    add_next_sales(all);
}

void add_ports(std::vector<Case>& all) {
    struct Row {
        const char* title;
        const char* why;
        Before before;
        bool sells = true;
        unsigned speed = 0;
    };
    static constexpr std::array kRows{
        Row{"an answer is there that nobody has read", "A program has died between its command and the answer.",
            Before::kUnread},
        Row{"a command waits", "A program has died while the PIN pad waited for a key.", Before::kWaiting},
        Row{"half a frame is there", "A program has died in the midst of a command.", Before::kHalf},
        Row{"an encrypted session is open", "A program has died, and with it the session's key.", Before::kEncrypted},
        Row{"another program has the port", "Two programs on one line read each other's answers.", Before::kLocked,
            false},
        Row{"nobody is at the line", "The PIN pad is off, and its port is there all the same.", Before::kMute, false},
        Row{"there is no port", "The cable is out.", Before::kMissing, false},
    };
    static constexpr const char* kSells = "The till must set the line right by itself, and sell.";
    static constexpr const char* kTells = "The till must end in time, and not say that anything was paid.";
    Family family(all, 9, 1);
    for (const Row& row : kRows) {
        Case& each = by_chip(family.add(row.title, row.why, row.sells ? kSells : kTells));
        each.before = row.before;
        if (row.sells) { each.goal = kMustBePaid; }
        if (!row.sells && row.before != Before::kLocked) { each.goal = {Outcome::kNotPaid}; }
        if (row.before == Before::kHalf) { each.pardons = {"frame"}; }
        // A till cannot know of it before it is told.
        if (row.before == Before::kEncrypted) { each.pardons = {"a plain command inside an encrypted session"}; }
    }
    Family speeds(all, 9, 2);
    for (const unsigned speed : {4800U, 9600U, 19200U, 115200U}) {
        Case& each = by_pin(speeds.add(fmt::format("a line of {} bits per second", speed),
                                       "A real line takes its time, and an answer comes in pieces.", kGoOn));
        each.speed = speed;
        each.goal = kMustBePaid;
        each.seconds = 8;
    }
}

void add_encrypted(std::vector<Case>& all) {
    Family family(all, 10, 1);
    const auto add = [&](std::string title, std::string why, std::string must) -> Case& {
        Case& each = by_pin(family.add(std::move(title), std::move(why), std::move(must)));
        each.needs.insert(Feature::kEncrypted);
        each.encrypted = true;
        return each;
    };
    Case& good = add("a sale in an encrypted session", "Card data must not be readable on the line.", kGoOn);
    good.goal = kMustBePaid;
    good.again = true;
    for (const size_t at : {5U, 6U, 7U}) {
        const Stage& stage = kStages[at];
        Case& each = add(fmt::format("{}: the cryptogram cannot be deciphered", stage.title),
                         fmt::format("The frame is good, and its content makes no sense. {}", stage.why), stage.must);
        strike(each, stage.commands, {.kind = "bad-cryptogram"});
        each.about = stage.commands;
        each.seconds = 12;
    }
    Case& lost = add("the answer that would open the session is lost", "The PIN pad has a key, and the till has none.",
                     kEndUnpaid);
    strike(lost, {"OPN"}, {.kind = "no-answer"});
    lost.pardonsSession = true;
    lost.again = true;
    lost.seconds = 15;
    Case& refused =
        add("the encrypted session is refused, as by a PIN pad that has none",
            "Not every PIN pad can encipher, and whether to go on in the clear is for the till's owner to say.",
            "The till must sell in a plain session, if it is meant to, or say that it cannot.");
    strike(refused, {"OPN"},
           {.kind = "status", .status = static_cast<int>(Status::kInvcall), .before = true, .asError = true});
    refused.pardonsSession = true;
    refused.again = true;
}

}  // namespace quorvel::sim::exam
