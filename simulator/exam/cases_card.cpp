// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <fmt/format.h>

#include "simulator/exam/cases.h"
#include "wire/status.h"

namespace quorvel::sim::exam {

namespace {

using std::chrono::milliseconds;

constexpr const char* kNoSale = "The till must end without a sale, give the card back, and close the session.";
const Outcomes kMustNotBePaid{Outcome::kNotPaid};

std::string name_of_status(Status status) {
    return fmt::format("{:03} {}", static_cast<int>(status), wire::status_name(static_cast<int>(status)));
}

struct Refused {
    const char* title;
    CommandIds commands;
    std::vector<Status> statuses;
    const char* why;
    const char* must;
    bool optional = false;
    bool needsTables = false;
};

const std::array kRefused{
    Refused{"opening the session",
            {"OPN"},
            {Status::kInterr},
            "Without a session nothing works.",
            "The till must end without a sale."},
    Refused{"asking for the tables' version",
            {"GTS"},
            {Status::kTaberr, Status::kInterr},
            "A PIN pad without tables has no version to tell.",
            "The till must load its tables, or end without a sale.",
            true,
            true},
    Refused{"loading records",
            {"TLR"},
            {Status::kTaberr, Status::kInvparm, Status::kInterr},
            "Half of the tables is none.",
            "The till must end without a sale, as the tables are not there.",
            true,
            true},
    Refused{"ending a load of tables",
            {"TLE"},
            {Status::kTaberr, Status::kInterr},
            "The tables count when the load has ended, not before.",
            "The till must end without a sale, or load them again.",
            true,
            true},
    Refused{"reading the card",
            kReading,
            {Status::kInvcall, Status::kInvparm, Status::kMandat, Status::kTabverdif, Status::kInterr,
             Status::kMcdataerr, Status::kInvamount, Status::kErrmaxaid},
            "No card was read.",
            kNoSale},
    Refused{"letting the card decide",
            kDeciding,
            {Status::kInvcall, Status::kInvparm, Status::kMandat, Status::kInterr, Status::kErrkey, Status::kPinbusy,
             Status::kErrcrypt, Status::kDumbcard, Status::kErrcard, Status::kCardproblems, Status::kCardinvdata},
            "The card has decided nothing that the till was told.",
            kNoSale},
    Refused{"telling the card what the acquirer has said",
            kFinishing,
            {Status::kInvcall, Status::kInvparm, Status::kInterr, Status::kNocard, Status::kDumbcard, Status::kErrcard,
             Status::kCardinvdata},
            "The acquirer has said yes, and the card does not follow.",
            "The till must not call it paid: a reversal is owed."},
    Refused{"having the card removed",
            kRemoving,
            {Status::kTimeout, Status::kInterr},
            "The sale is decided.",
            "The till must say paid.",
            true},
    Refused{
        "closing the session", kClosing, {Status::kInterr}, "The sale is decided.", "The till must say paid.", true},
};

}  // namespace

void add_refusals(std::vector<Case>& all) {
    unsigned number = 0;
    for (const Refused& row : kRefused) {
        Family family(all, 3, ++number);
        for (const Status status : row.statuses) {
            Case& each =
                by_chip(family.add(fmt::format("{}: {}", row.title, name_of_status(status)), row.why, row.must));
            strike(each, row.commands, {.kind = "status", .status = static_cast<int>(status), .before = true});
            each.about = row.commands;
            each.optional = row.optional;
            if (row.needsTables) { each.needs.insert(Feature::kTables); }
            if (row.commands == kRemoving || row.commands == kClosing) { each.goal = kMustBePaid; }
            each.pardonsSession = row.commands.front() == "OPN" || row.commands == kClosing;
        }
    }
}

namespace {

void unpaid(Case& each) { each.goal = kMustNotBePaid; }

Cue when_waiting(const CommandIds& commands, Gestures gestures) {
    return {.commands = commands, .deed = Deed::kPersonActs, .gestures = std::move(gestures)};
}
Cue when_ended(const CommandIds& commands, Gestures gestures) {
    return {
        .when = Cue::When::kEnded, .commands = commands, .deed = Deed::kPersonActs, .gestures = std::move(gestures)};
}

void add_refusing_persons(Family family) {
    const auto add = [&](const char* title, const char* why, Cue cue) -> Case& {
        Case& each = by_pin(family.add(title, why, kNoSale));
        each.cues = {std::move(cue)};
        unpaid(each);
        return each;
    };
    static constexpr const char* kChanged = "People change their minds, and it must cost them nothing.";
    add("CANCEL before the card", kChanged, when_waiting(kReading, Gestures().press(Key::kCancel)));
    add("CANCEL before the PIN", kChanged, when_waiting(kDeciding, Gestures().press(Key::kCancel)));
    add("CANCEL amid the PIN", kChanged,
        when_waiting(kDeciding, Gestures().press(digit('1')).press(digit('2')).press(Key::kCancel)));
    Case& menu = add("CANCEL in the menu of applications", kChanged,
                     when_waiting(kReading, inserted("visa-multiple").press(Key::kCancel)));
    // With one application in its tables there is no menu, and so nothing to cancel.
    menu.goal = Outcomes::any();
    for (const CommandIds* commands : {&kReading, &kDeciding}) {
        Case& each = add(commands == &kReading ? "nobody comes" : "nobody types the PIN",
                         "A till that waits for ever serves nobody.", {.commands = *commands});
        each.second = milliseconds(20);
    }
    Case& left = by_chip(family.add("nobody takes the card out", "The sale is decided, and the next customer waits.",
                                    "The till must say paid, and end in time."));
    left.cues = {{.commands = kRemoving}};
    left.goal = kMustBePaid;
    left.about = kRemoving;
    left.optional = true;
    left.seconds = 12;
}

void add_removals(Family family) {
    static constexpr const char* kWhy = "Cards are pulled out at any time, and a chip without power decides nothing.";
    static constexpr const char* kOwed =
        "The acquirer has said yes, and the card will never know. A reversal is owed, and it is not paid.";
    const Card other = card("declining-chip");
    const auto add = [&](const char* title, Cue cue, bool yesGiven) {
        Case& each = by_pin(family.add(title, kWhy, yesGiven ? kOwed : kNoSale));
        each.cues = {std::move(cue)};
        each.goal = yesGiven ? Outcomes{Outcome::kReversal, Outcome::kUnknown} : kMustNotBePaid;
    };
    add("the card is out while the PIN is typed", when_waiting(kDeciding, Gestures().press(digit('1')).remove()),
        false);
    add("the card is out once it was read", when_ended(kReading, Gestures().remove()), false);
    add("the card is out while the acquirer is asked", when_ended(kDeciding, Gestures().remove()), true);
    add("the card is out and in again while the acquirer is asked",
        when_ended(kDeciding, Gestures().remove().insert(card("visa-chip"))), true);
    add("another card is in once it was read", when_ended(kReading, Gestures().remove().insert(other)), false);
    add("another card is in while the acquirer is asked", when_ended(kDeciding, Gestures().remove().insert(other)),
        true);
    Case& done = by_pin(family.add("the card is out before it is asked to be", kWhy, "It is paid: all was decided."));
    done.cues = {when_ended(kFinishing, Gestures().remove())};
    done.goal = kMustBePaid;
}

void add_pins(Family family) {
    struct Row {
        const char* title;
        const char* card;
        Gestures entry;
        bool paid;
        int tries = 3;
    };
    const Row rows[]{
        {"wrong once", "mastercard-chip", typed("1111").type("1234"), true},
        {"wrong twice", "mastercard-chip", typed("1111").type("2222").type("1234"), true},
        {"wrong three times", "mastercard-chip", typed("1111").type("2222").type("3333"), false},
        {"wrong at the last try", "mastercard-chip", typed("1111"), false, 1},
        {"blocked before", "mastercard-chip", {}, false, 0},
        {"of three digits, then of four", "visa-chip",
         Gestures()
             .press(digit('1'))
             .press(digit('2'))
             .press(digit('3'))
             .press(Key::kEnter)
             .press(digit('4'))
             .press(Key::kEnter),
         true},
        {"of twelve digits", "visa-chip", typed("123456789012"), true},
    };
    for (const Row& row : rows) {
        Case& each =
            by_pin(family.add(fmt::format("a PIN that is {}", row.title), "Cardholders err, and the card counts.",
                              row.paid ? "The till must wait for the right one, and sell." : kNoSale));
        Card own = card(row.card);
        own.chip->pinTries = row.tries;
        each.person = {.cards = {inserted(own)}, .entries = {row.entry}};
        each.goal = row.paid ? kMustBePaid : kMustNotBePaid;
    }
    Case& cleared =
        by_pin(family.add("a PIN that is cleared first", "Cardholders err.", "The till must wait, and sell."));
    cleared.person.entries = {Gestures().press(digit('9')).press(Key::kClear).type("1234")};
    cleared.goal = kMustBePaid;
}

}  // namespace

void add_people(std::vector<Case>& all) {
    add_refusing_persons(Family(all, 4, 1));
    add_removals(Family(all, 4, 2));
    add_pins(Family(all, 4, 3));
}

namespace {

void add_bad_chips(Family family) {
    for (const Status status :
         {Status::kDumbcard, Status::kErrcard, Status::kCardinvalidat, Status::kCardproblems, Status::kCardinvdata,
          Status::kCardappnav, Status::kCardappnaut, Status::kErrfallback, Status::kCardblocked}) {
        Case& each = by_chip(family.add(fmt::format("a chip that comes to {}", name_of_status(status)),
                                        "The card is in the reader, and no sale can come of it.", kNoSale));
        Card bad = card("visa-signature");
        bad.chip->fault = status;
        each.person.cards = {inserted(bad)};
        // A till may let it be swiped after some of these, which is no sale without a stripe.
        each.goal = kMustNotBePaid;
    }
}

void add_bad_antennas(Family family) {
    for (const Status status :
         {Status::kCtlsmultiple, Status::kCtlscommerr, Status::kCtlsinvalidat, Status::kCtlsproblems,
          Status::kCtlsappnav, Status::kCtlsappnaut, Status::kCtlsextcvm, Status::kCtlsifchg}) {
        Case& each = family.add(fmt::format("a contactless card that comes to {}", name_of_status(status)),
                                "The card was held to the reader, and no sale can come of it.",
                                "The till must end without a sale, or ask for a card again.");
        each.needs = {Feature::kContactless};
        Card bad = card("visa-contactless");
        bad.contactless->fault = status;
        each.person.cards = {Gestures().tap(bad), Gestures().press(Key::kCancel)};
        each.goal = kMustNotBePaid;
    }
}

void add_decisions(Family family) {
    Case& first = by_chip(family.add("a card that declines at once", "Nobody else is asked then.", kNoSale));
    Card declining = card("visa-signature");
    declining.chip->first = Chip::First::kDeclined;
    first.person.cards = {inserted(declining)};
    unpaid(first);
    Case& last = by_chip(family.add("a card that declines after the acquirer's yes", "The card has the last word.",
                                    "Not paid, and a reversal is owed."));
    last.person.cards = {inserted("declining-chip")};
    last.goal = {Outcome::kReversal};
}

// The stripe stands in for a chip that does not work.
void add_fallbacks(Family family) {
    Case& each = family.add("a chip that does not work, and then the stripe",
                            "The stripe may stand in for a chip that cannot be read.",
                            "The till must end without a sale, or have the card swiped and sell.");
    each.needs = {Feature::kChip, Feature::kStripe};
    each.person.cards = {inserted("mute-chip"), Gestures().remove().swipe(card("mute-chip"))};
    Case& none = family.add("a card that has neither chip nor stripe", "Loyalty cards are tried, too.",
                            "The till must end without a sale, or ask again.");
    none.needs = {Feature::kChip};
    none.person.cards = {inserted(Card{.pan = "4242424242424242"})};
    unpaid(none);
    Case& foreign = by_chip(family.add("a card without an application for payments",
                                       "Its chip works, and has nothing to pay with.", kNoSale));
    Card empty = card("visa-signature");
    empty.applications.clear();
    foreign.person.cards = {inserted(empty)};
    unpaid(foreign);
}

}  // namespace

void add_cards(std::vector<Case>& all) {
    add_bad_chips(Family(all, 5, 1));
    add_bad_antennas(Family(all, 5, 2));
    add_decisions(Family(all, 5, 3));
    add_fallbacks(Family(all, 5, 4));
}

}  // namespace quorvel::sim::exam
