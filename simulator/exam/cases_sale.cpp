// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <fmt/format.h>

#include "simulator/exam/cases.h"

namespace quorvel::sim::exam {

namespace {

using std::chrono::milliseconds;

constexpr const char* kOrdinary = "It is what happens all day.";
constexpr const char* kSell = "The till must sell, and say paid.";

Case& paid(Case& each) {
    each.goal = kMustBePaid;
    return each;
}

void by_stripe(Case& each, const Card& card) {
    each.needs.insert(Feature::kStripe);
    each.person = {.cards = {Gestures().swipe(card)}};
}

void by_contact_free(Case& each, const Card& card) {
    each.needs.insert({Feature::kContactless, Feature::kPin});
    each.person = {.cards = {Gestures().tap(card)}, .entries = {typed("1234")}};
}

void add_chips(Family family) {
    paid(by_chip(family.add("a chip that wants a signature", kOrdinary, kSell)));
    paid(by_pin(family.add("a chip with a PIN that the acquirer checks", kOrdinary, kSell)));
    Case& offline = paid(by_pin(family.add("a chip that checks the PIN itself", kOrdinary, kSell)));
    offline.person = {.cards = {inserted("mastercard-chip")}, .entries = {typed("1234")}};
    for (const int option : {1, 2}) {
        Case& several = paid(by_pin(family.add(fmt::format("application {} of a card with two", option),
                                               "The cardholder chooses in a menu while the till waits.", kSell)));
        several.person.cards = {inserted("visa-multiple").choose(option)};
    }
    Case& inside = paid(by_chip(
        family.add("a card that is inside before the till asks", "Customers are faster than cashiers.", kSell)));
    inside.prepare = [](Device& device) { device.insert(card("visa-signature")); };
    Case& slow = paid(by_pin(family.add("a cardholder who takes two seconds for the PIN",
                                        "Nobody types at once, and the till must not lose patience.", kSell)));
    slow.cues = {
        {.commands = kDeciding, .deed = Deed::kPersonActs, .gestures = typed("1234"), .after = milliseconds(2000)}};
    Case& told = paid(by_pin(family.add("a PIN pad that tells what it does meanwhile",
                                        "Notifications come while a command waits, and are no answers.", kSell)));
    told.person.cards = {Gestures().notify("WELCOME").notify("READING").insert(card("visa-chip"))};
    Case& twice = paid(by_pin(family.add("two sales, one after the other",
                                         "What the first has left behind must not be in the way of the second.",
                                         "Both must be paid.")));
    twice.again = true;
}

void add_other_interfaces(std::vector<Case>& all) {
    Family stripes(all, 1, 2);
    by_stripe(paid(stripes.add("a stripe", kOrdinary, kSell)), card("visa-magnetic"));
    by_stripe(paid(stripes.add("a stripe with three tracks", kOrdinary, kSell)), card("mastercard-magnetic"));
    Case& chip = paid(by_chip(
        stripes.add("a chip card that is swiped first", "The PIN pad asks for the chip, and goes on waiting.", kSell)));
    chip.person.cards = {Gestures().swipe(card("visa-signature")).insert(card("visa-signature"))};
    Family taps(all, 1, 3);
    by_contact_free(paid(taps.add("a contactless card with a PIN", kOrdinary, kSell)), card("visa-contactless"));
    by_contact_free(paid(taps.add("a contactless card that has tracks only", kOrdinary, kSell)),
                    card("mastercard-contactless"));
}

void add_amounts(Family family) {
    for (const uint64_t cents : {1ULL, 9ULL, 10ULL, 99ULL, 100ULL, 101ULL, 1000ULL, 12345ULL, 99999ULL, 100000ULL,
                                 123456789ULL, 999999999ULL, 4294967296ULL, 999999999999ULL}) {
        Case& each = paid(by_chip(family.add(fmt::format("an amount of {}", amount_words(cents)),
                                             "Amounts are lost in conversions: at ends, at odd cents, beyond 32 bits.",
                                             "The PIN pad must be told the amount, to the cent.")));
        each.cents = cents;
    }
    Case& none = by_chip(family.add("an amount of 0.00", "Nothing is to be paid.",
                                    "The till must refuse it, or ask the card for nothing."));
    none.cents = 0;
}

}  // namespace

void add_good_sales(std::vector<Case>& all) {
    add_chips(Family(all, 1, 1));
    add_other_interfaces(all);
    add_amounts(Family(all, 1, 4));
}

namespace {

constexpr const char* kNoSale = "Nothing is paid, and the till must say so.";

struct Answer {
    const char* title;
    const char* why;
    const char* must;
    Host host;
};

constexpr std::array kAnswers{
    Answer{"the acquirer declines", "The acquirer has the last word about a no.", kNoSale, Host::kDeclines},
    Answer{"the acquirer cannot be reached", "Nobody has said yes.",
           "The card must be told so, and without its word nothing is paid.", Host::kUnreachable},
    Answer{"the acquirer's yes comes too late", "The acquirer believes in a sale that the till gave up.",
           "Not paid with a reversal owed, or unknown, or paid where it has waited: a silent end charges the customer.",
           Host::kLate},
};

using Interface = std::pair<const char*, void (*)(Case&)>;

const std::array<Interface, 4> kInterfaces{
    {{"chip", [](Case& each) { by_chip(each); }},
     {"chip and PIN", [](Case& each) { by_pin(each); }},
     {"contactless", [](Case& each) { by_contact_free(each, card("visa-contactless")); }},
     {"stripe", [](Case& each) { by_stripe(each, card("visa-magnetic")); }}}};

// Whoever says no, or nothing, and whatever happens to the card's answer then.
void add_last_words(Family family) {
    struct Row {
        const char* title;
        const char* why;
        const char* must;
        Host host;
        const char* fault;
        Outcomes goal;
    };
    const Row rows[]{
        {"the acquirer says yes and the card no",
         "The card has the last word, and the acquirer believes in a sale.",
         "Not paid, and a reversal is owed.",
         Host::kApproves,
         "",
         {Outcome::kReversal}},
        {"the acquirer says yes, the card no, and the till is not told",
         "What the till was not told may have been a no.",
         "Unknown, or not paid with a reversal owed.",
         Host::kApproves,
         "no-answer",
         {Outcome::kReversal, Outcome::kUnknown}},
        {"the acquirer says no, and the card's answer is lost", "A no stays one, whatever the card says.",
         "Not paid, or unknown.", Host::kDeclines, "no-answer", Outcomes::any()},
        {"the acquirer cannot be reached and the card's answer is lost",
         "The card may have approved by itself, and nobody was told.", "Anything but paid.", Host::kUnreachable,
         "no-answer", Outcomes::any()},
    };
    for (const Row& row : rows) {
        Case& each = by_chip(family.add(row.title, row.why, row.must));
        const bool approvesInTheEnd = row.host != Host::kApproves;
        each.person.cards = {inserted(approvesInTheEnd ? "visa-signature" : "declining-chip")};
        each.host = row.host;
        each.goal = row.goal;
        if (row.fault[0] == 0) { continue; }
        strike(each, kFinishing, {.kind = row.fault});
        each.seconds = 12;
    }
}

Card approving_alone() {
    Card alone = card("visa-signature");
    alone.chip->second = Chip::Second::kApproved;
    return alone;
}

}  // namespace

void add_acquirers(std::vector<Case>& all) {
    unsigned number = 0;
    for (const Answer& answer : kAnswers) {
        Family family(all, 6, ++number);
        for (const auto& [name, arrange] : kInterfaces) {
            Case& each = family.add(fmt::format("{}: {}", name, answer.title), answer.why, answer.must);
            arrange(each);
            each.host = answer.host;
        }
    }
    add_last_words(Family(all, 6, 4));
    Case& alone = Family(all, 6, 5).add("the acquirer cannot be reached, and the card approves by itself",
                                        "The card may take the risk, and has the last word.",
                                        "It is paid: the card's yes stands for the acquirer's.");
    by_chip(alone).person.cards = {inserted(approving_alone())};
    alone.host = Host::kUnreachable;
    alone.goal = kMustBePaid;
}

void add_stops(std::vector<Case>& all) {
    struct Row {
        const char* title;
        const CommandIds& commands;
        Cue::When when;
        const char* why;
        const char* must;
        bool paid = false;
        const char* fault = "";
    };
    static constexpr const char* kLeave = "The till must leave at once, without a sale, and cancel what waits.";
    static constexpr const char* kKnow = "The till must say what has become of the sale all the same.";
    const Row rows[]{
        {"while the PIN pad waits for a card", kReading, Cue::When::kWaits, "The customer has gone.", kLeave},
        {"once the card was read", kReading, Cue::When::kEnded, "The customer has thought better of it.", kLeave},
        {"while the PIN pad waits for the PIN", kDeciding, Cue::When::kWaits, "The customer has gone.", kLeave},
        {"once the card has asked for the acquirer", kDeciding, Cue::When::kEnded,
         "The acquirer may have been asked already.", kKnow},
        {"once the card was told", kFinishing, Cue::When::kEnded, "The money may have moved.", kKnow},
        {"while the card's last answer does not come", kFinishing, Cue::When::kEnded, "The money may have moved.",
         kKnow, false, "no-answer"},
        {"while the card is to be taken out", kRemoving, Cue::When::kWaits, "The sale is decided.",
         "The till must say paid.", true},
        {"once the session is closed", kClosing, Cue::When::kEnded, "The sale is decided.", "The till must say paid.",
         true},
    };
    Family family(all, 7, 1);
    for (const Row& row : rows) {
        Case& each = by_pin(family.add(fmt::format("stopped {}", row.title), row.why, row.must));
        each.needs.insert(Feature::kInterrupt);
        const bool lost = row.fault[0] != 0;
        each.cues = {{.when = row.when,
                      .commands = row.commands,
                      .deed = Deed::kInterrupt,
                      .after = milliseconds(lost ? 300 : 0)}};
        if (lost) { strike(each, row.commands, {.kind = row.fault}); }
        if (row.paid) { each.goal = kMustBePaid; }
        each.about = row.commands;
        each.optional = row.commands == kRemoving || row.commands == kClosing;
        each.again = !lost;
    }
}

void add_tables(std::vector<Case>& all) {
    struct Row {
        const char* title;
        const char* why;
        void (*prepare)(Device& device);
    };
    static constexpr std::array kRows{
        Row{"the PIN pad has none", "It comes from the factory.", [](Device&) {}},
        Row{"the PIN pad has tables of another version", "Another till has used it.",
            [](Device& device) { device.tables.load(Tables::kAllAcquirers, "STRANGE001"); }},
        Row{"the PIN pad has another acquirer's tables only", "Another till has used it.",
            [](Device& device) { device.tables.load(9, "STRANGE009"); }},
        Row{"a load was begun and never ended", "Another till was cut off in the midst of it.",
            [](Device& device) { device.tables.begin(Tables::kAllAcquirers, "STRANGE001"); }},
    };
    Family family(all, 8, 1);
    for (const Row& row : kRows) {
        Case& each = paid(by_chip(family.add(row.title, row.why, "The till must load its own, and sell.")));
        each.needs.insert(Feature::kTables);
        each.prepare = row.prepare;
    }
    Case& none = by_chip(Family(all, 8, 2).add("the card's record is in no table",
                                               "The PIN pad knows nothing of the card's application.",
                                               "The till must end without a sale, and give the card back."));
    Card unknown = card("visa-signature");
    unknown.applications.front().acquirer = 98;
    unknown.applications.front().record = "98";
    none.person.cards = {inserted(unknown)};
    none.goal = {Outcome::kNotPaid};
}

}  // namespace quorvel::sim::exam
