// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "cli/command.h"
#include "cli/items.h"
#include "cli/link.h"
#include "cli/port.h"

namespace quorvel::cli::setup {

namespace {

struct EventOptions {
    std::vector<std::string> kinds;
    uint8_t timeout = 60;
};

bool has(const std::vector<std::string>& kinds, std::string_view kind) {
    return std::ranges::find(kinds, kind) != kinds.end();
}

Cex request(const std::vector<std::string>& kinds, std::chrono::seconds timeout) {
    const auto wants = [&](std::string_view kind) { return kinds.empty() || has(kinds, kind); };
    return {.keys = wants("key"),
            .stripe = wants("stripe"),
            .chip = has(kinds, "removal") ? Cex::Chip::removed
                    : wants("chip")       ? Cex::Chip::inserted
                                          : Cex::Chip::none,
            .contactless = wants("tap"),
            .timeout = timeout,
            .pan_mask = PanMask{}};
}

struct Meaning {
    CexEvent event;
    std::string_view name;
    std::string_view words;
};

constexpr std::array kMeanings{
    Meaning{CexEvent::key, "PRESSED_KEY", "ENTER was pressed"},
    Meaning{CexEvent::key_up, "PRESSED_KEY_ARROW_UP", "a key was pressed"},
    Meaning{CexEvent::key_down, "PRESSED_KEY_ARROW_DOWN", "a key was pressed"},
    Meaning{CexEvent::key_f1, "PRESSED_KEY_F1", "a key was pressed"},
    Meaning{CexEvent::key_f2, "PRESSED_KEY_F2", "a key was pressed"},
    Meaning{CexEvent::key_f3, "PRESSED_KEY_F3", "a key was pressed"},
    Meaning{CexEvent::key_f4, "PRESSED_KEY_F4", "a key was pressed"},
    Meaning{CexEvent::key_clear, "PRESSED_KEY_CLEAR", "CLEAR was pressed"},
    Meaning{CexEvent::key_cancel, "PRESSED_KEY_CANCEL", "CANCEL was pressed"},
    Meaning{CexEvent::stripe, "MAGNETIC_CARD", "a card was swiped"},
    Meaning{CexEvent::chip_removed, "ICC_REMOVED", "the chip card is out"},
    Meaning{CexEvent::chip_inserted, "ICC_INSERTED", "a chip card is in"},
    Meaning{CexEvent::contactless_gone, "CTLS_NOT_DETECTED", "there is no contactless card"},
    Meaning{CexEvent::contactless, "CTLS_DETECTED", "a contactless card is there"},
};

Group words_for(const CexAnswer& answer) {
    const auto* meaning = std::ranges::find(kMeanings, answer.event, &Meaning::event);
    const bool known = meaning != kMeanings.end();
    Group report{{"Event", std::string(known ? meaning->name : "UNKNOWN")},
                 {"Meaning", std::string(known ? meaning->words : "no event that the protocol has")}};
    add_item(report, "Track 1", answer.items, ABECS_RSP_DATID_PP_TRK1INC);
    add_item(report, "Track 2", answer.items, ABECS_RSP_DATID_PP_TRK2INC);
    add_item(report, "Track 3", answer.items, ABECS_RSP_DATID_PP_TRK3INC);
    return report;
}

Outcome run_event(Context& context, const EventOptions& options) {
    if (has(options.kinds, "removal") && has(options.kinds, "chip")) {
        throw Error(Exit::kUsage, "The PIN pad waits for a chip card to come or to go, not for both.");
    }
    const std::chrono::seconds timeout(options.timeout);
    Link link(context.settings, context.output);
    context.output.notice("Waiting for an event at the PIN pad.");
    const CexAnswer answer = link.await(request(options.kinds, timeout), timeout + kMargin);
    link.close();
    return {words_for(answer)};
}

// One event after the other on one link. Where a chip card is in, what comes next is that it goes.
void tell_events(Context& context, const std::vector<std::string>& kinds, bool& opened) {
    constexpr std::chrono::seconds kRound{60};
    Link link(context.settings, context.output);
    opened = true;
    context.output.notice("Watching the PIN pad.");
    for (bool inserted = false;;) {
        Cex wanted = request(kinds, kRound);
        if (inserted && wanted.chip == Cex::Chip::inserted) { wanted.chip = Cex::Chip::removed; }
        const auto answer = link.wait(wanted, kRound + kMargin);
        if (answer.status() == quorvel::Status::timeout) { continue; }
        const CexAnswer event = Link::value_of(answer);
        if (event.event == CexEvent::chip_inserted) { inserted = true; }
        if (event.event == CexEvent::chip_removed) { inserted = false; }
        context.output.line(words_for(event));
    }
}

// Until a signal comes, whatever becomes of the line meanwhile. Only what was wrong from the start ends it: a port that
// has just come back may not be ready yet.
Outcome run_watch(Context& context, const std::vector<std::string>& kinds) {
    constexpr std::chrono::milliseconds kPause{500};
    std::string last;
    for (bool opened = false;;) {
        try {
            interrupt::check();
            tell_events(context, kinds, opened);
        } catch (const Interrupted& error) { return {.exit = error.exit(), .told = true}; } catch (const Error& error) {
            const auto* port = dynamic_cast<const PortError*>(&error);
            const bool missing = port != nullptr && (opened || port->reason() == PortError::Reason::kMissing);
            if (!missing && error.exit() != Exit::kLink) { throw; }
            if (last != error.what()) { context.output.notice(error.what()); }
            last = error.what();
        }
        if (!interrupt::requested()) { std::this_thread::sleep_for(kPause); }
    }
}

constexpr std::array<std::string_view, 5> kKinds{"key", "stripe", "chip", "tap", "removal"};

}  // namespace

Run event(CommandLine& line) {
    const auto options = std::make_shared<EventOptions>();
    line.words("kind", options->kinds, {kKinds.begin(), kKinds.end()},
               "What to wait for; without any, all but the removal");
    line.number("--timeout", options->timeout, "Seconds to wait", "SECONDS", 1);
    return [options](Context& context) { return run_event(context, *options); };
}

Run watch(CommandLine& line) {
    const auto kinds = std::make_shared<std::vector<std::string>>();
    line.words("kind", *kinds, {kKinds.begin(), kKinds.end() - 1},
               "What to tell of; without any, everything. A chip card that has come is told of again when it goes");
    return [kinds](Context& context) { return run_watch(context, *kinds); };
}

}  // namespace quorvel::cli::setup
