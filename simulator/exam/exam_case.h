// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_EXAM_EXAM_CASE_H
#define QUORVEL_SIMULATOR_EXAM_EXAM_CASE_H

#include <chrono>
#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/cardholder/event.h"
#include "simulator/device/device.h"
#include "simulator/exam/outcome.h"
#include "simulator/exam/till.h"
#include "simulator/faults/fault.h"
#include "simulator/scenario/scenario.h"

namespace quorvel::sim::exam {

// Never another case's, whatever is added or left out.
struct Number {
    unsigned chapter = 0;
    unsigned family = 0;
    unsigned item = 0;

    auto operator<=>(const Number&) const = default;  // NOLINT(modernize-use-nullptr)
    [[nodiscard]] std::string words() const;
};

// What happens besides the cardholder's usual doing.
enum class Deed {
    kPersonActs,  // the gestures
    kNothing,     // a person who does not act
    kInterrupt,   // the till is told to stop, as by Ctrl-C
    kCut,         // the line is gone for a moment
};

struct Cue {
    // As the command begins to wait, once it has ended.
    enum class When { kWaits, kEnded };

    When when = When::kWaits;
    CommandIds commands;
    Deed deed = Deed::kNothing;
    Gestures gestures = {};
    std::chrono::milliseconds after{0};
};

// The cardholder does the same each time: has a card, knows a PIN, and takes the card out.
struct Person {
    // For each command in turn that waits for a card, or for a PIN; the last one goes on being done.
    std::vector<Gestures> cards;
    std::vector<Gestures> entries = {};
};

// What another program has left on the port before the till comes.
enum class Before {
    kNothing,
    kUnread,     // an answer that nobody has read
    kWaiting,    // a command that waits
    kHalf,       // half a frame
    kEncrypted,  // an encrypted session whose key nobody has any more
    kLocked,     // it is still there, and has the port for itself
    kMute,       // nothing: there is no PIN pad at the line
    kMissing,    // not even a port
};

struct Case {
    Number number;
    std::string title;
    std::string why;
    std::string must;
    std::set<Feature> needs = {};

    uint64_t cents = 1234;
    Host host = Host::kApproves;
    bool encrypted = false;
    Person person = {};
    std::vector<Fault> faults = {};
    std::vector<Cue> cues = {};
    std::function<void(Device&)> prepare = {};
    Before before = Before::kNothing;
    // How long a second of the PIN pad's time-outs lasts.
    std::chrono::milliseconds second{1000};
    unsigned speed = 0;

    // Among what is right for the money.
    Outcomes goal = Outcomes::any();
    // The commands of which the till has to send one, as the case is about it; a till that need not is not concerned.
    CommandIds about = {};
    bool optional = false;
    // Parts of what the PIN pad may complain about.
    std::vector<std::string> pardons = {};
    // A till that cannot know that there is a session need not close it.
    bool pardonsSession = false;
    // Another sale follows, with nothing in its way, and is paid.
    bool again = false;
    // About how long it takes, so that long ones begin first.
    unsigned seconds = 1;
};

struct Chapter {
    unsigned number = 0;
    std::string_view title;
};

[[nodiscard]] std::span<const Chapter> chapters() noexcept;
// All cases, in the order of their numbers.
[[nodiscard]] const std::vector<Case>& catalogue();

// Those that one of the patterns means: a number, the beginning of numbers ("3", "3.2"), or a pattern of the shell's
// for numbers or titles; all without any. Throws std::runtime_error for a pattern that means none.
[[nodiscard]] std::vector<const Case*> chosen(const std::vector<std::string>& patterns);

}  // namespace quorvel::sim::exam

#endif
