// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <cstring>
#include <fmt/format.h>
#include <memory>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/items.h"
#include "cli/link.h"

namespace quorvel::cli::setup {

namespace {

constexpr size_t kShortMessage = 32;
constexpr size_t kLongMessage = 128;

// What the shell hands over as "\n" is a line break for the PIN pad.
std::string with_breaks(std::string text) {
    for (size_t at = text.find("\\n"); at != std::string::npos; at = text.find("\\n", at)) {
        text.replace(at, 2, "\r");
    }
    std::ranges::replace(text, '\n', '\r');
    return text;
}

// The text stays when the session is over, which a short one and a long one do by different commands.
Outcome run_display(Context& context, const std::string& given) {
    const std::string text = with_breaks(given);
    Link link(context.settings, context.output);
    if (text.size() <= kShortMessage && text.find('\r') == std::string::npos) {
        link.ask("DSP", [&] { return abecs_cmd_dsp(link.get(), text.c_str()); });
    } else {
        link.ask("DEX", [&] { return abecs_cmd_dex(link.get(), text.c_str()); });
    }
    link.leave_text(text);
    link.close();
    return {{{"Shown", given}}};
}

struct MenuOptions {
    std::string title;
    std::vector<std::string> options;
    uint8_t timeout = 0;
};

using Slots = std::array<char[25], 20>;

Outcome run_menu(Context& context, const MenuOptions& menu) {
    Slots slots{};
    for (size_t i = 0; i < menu.options.size(); ++i) {
        const std::string& option = menu.options[i];
        if (option.empty() || option.size() >= sizeof slots[i]) {
            throw Error(Exit::kUsage, fmt::format("'{}' is no option: it takes 1 to 24 characters.", option));
        }
        std::memcpy(slots[i], option.c_str(), option.size() + 1);
    }
    const std::string title = with_breaks(menu.title);
    Link link(context.settings, context.output);
    context.output.notice("Choose on the PIN pad.");
    uint32_t chosen = 0;
    const int32_t status =
        link.wait([&] { abecs_cmd_mnu(link.get(), menu.timeout, title.c_str(), slots.data(), menu.options.size()); },
                  [&](char* notification) { return abecs_cmd_mnu_response(link.get(), &chosen, notification); });
    if (status != ABECS_RSP_STAT_ST_OK) { throw StatusError("MNU", status); }
    link.close();
    const bool known = chosen >= 1 && chosen <= menu.options.size();
    return {{{"Choice", chosen}, {"Option", known ? menu.options[chosen - 1] : "unknown"}}};
}

// The keys that GKY tells by its status.
const char* key_name(int32_t status) {
    switch (status) {
        case ABECS_RSP_STAT_ST_OK:
            return "ENTER";
        case ABECS_RSP_STAT_ST_F1:
            return "F1";
        case ABECS_RSP_STAT_ST_F2:
            return "F2";
        case ABECS_RSP_STAT_ST_F3:
            return "F3";
        case ABECS_RSP_STAT_ST_F4:
            return "F4";
        case ABECS_RSP_STAT_ST_BACKSP:
            return "CLEAR";
        case ABECS_RSP_STAT_ST_CANCEL:
            return "CANCEL";
        default:
            throw StatusError("GKY", status);
    }
}

Outcome run_key(Context& context) {
    Link link(context.settings, context.output);
    context.output.notice("Press ENTER, CLEAR, CANCEL or a function key on the PIN pad.");
    const char* key =
        key_name(link.wait([&] { abecs_cmd_gky(link.get()); },
                           [&](char* notification) { return abecs_cmd_gky_response(link.get(), notification); }));
    link.close();
    return {{{"Key", key}}};
}

struct EventOptions {
    std::vector<std::string> kinds;
    uint8_t timeout = 60;
};

// A digit for keys, stripe, chip and contactless each, and two that stand for nothing.
std::string event_options(const std::vector<std::string>& kinds) {
    const auto has = [&](const char* kind) { return kinds.empty() || std::ranges::find(kinds, kind) != kinds.end(); };
    const bool removal = std::ranges::find(kinds, "removal") != kinds.end();
    if (removal && !kinds.empty() && std::ranges::find(kinds, "chip") != kinds.end()) {
        throw Error(Exit::kUsage, "The PIN pad waits for a chip card to come or to go, not for both.");
    }
    return fmt::format("{:d}{:d}{}{:d}00", has("key"), has("stripe"), removal ? 1 : has("chip") ? 2 : 0, has("tap"));
}

std::string event_words(AbecsPpEvent_E event) {
    switch (event) {
        case ABECS_PP_EVENT_MAGNETIC_CARD:
            return "a card was swiped";
        case ABECS_PP_EVENT_ICC_REMOVED:
            return "the chip card is out";
        case ABECS_PP_EVENT_ICC_INSERTED:
            return "a chip card is in";
        case ABECS_PP_EVENT_CTLS_NOT_DETECTED:
            return "there is no contactless card";
        case ABECS_PP_EVENT_CTLS_DETECTED:
            return "a contactless card is there";
        case ABECS_PP_EVENT_PRESSED_KEY:
            return "ENTER was pressed";
        case ABECS_PP_EVENT_PRESSED_KEY_CLEAR:
            return "CLEAR was pressed";
        case ABECS_PP_EVENT_PRESSED_KEY_CANCEL:
            return "CANCEL was pressed";
        default:
            return "a key was pressed";
    }
}

// "ABECS_PP_EVENT_PRESSED_KEY_F1" without what they all begin with.
std::string event_name(AbecsPpEvent_E event) {
    return std::string(call([&] { return abecs_pp_event_to_string(event); })).substr(std::strlen("ABECS_PP_EVENT_"));
}

Outcome run_event(Context& context, const EventOptions& options) {
    const std::string wanted = event_options(options.kinds);
    constexpr std::array<uint8_t, 2> kMask{6, 4};
    Link link(context.settings, context.output);
    Items items;
    context.output.notice("Waiting for an event at the PIN pad.");
    const int32_t status =
        link.wait([&] { abecs_cmd_cex(link.get(), wanted.c_str(), &options.timeout, kMask.data()); },
                  [&](char* notification) { return abecs_cmd_cex_response(link.get(), items.get(), notification); });
    if (status != ABECS_RSP_STAT_ST_OK) { throw StatusError("CEX", status); }
    const AbecsPpEvent_E event = call([&] { return abecs_cmd_cex_response_get_event(items.get()); });
    link.close();
    Group report{{"Event", event_name(event)}, {"Meaning", event_words(event)}};
    items.add(report, "Track 1", ABECS_RSP_DATID_PP_TRK1INC);
    items.add(report, "Track 2", ABECS_RSP_DATID_PP_TRK2INC);
    items.add(report, "Track 3", ABECS_RSP_DATID_PP_TRK3INC);
    return {report};
}

}  // namespace

Run display(CLI::App& app) {
    const auto text = std::make_shared<std::string>();
    app.add_option("text", *text, "What to show; \\n begins a new line")
        ->required()
        ->check(CLI::Validator(
            [](std::string& given) { return given.size() > kLongMessage ? "at most 128 characters" : ""; }, ""));
    return [text](Context& context) { return run_display(context, *text); };
}

Run menu(CLI::App& app) {
    const auto menu = std::make_shared<MenuOptions>();
    app.add_option("option", menu->options, "1 to 20 options of up to 24 letters and digits")
        ->required()
        ->expected(1, static_cast<int>(std::tuple_size_v<Slots>));
    app.add_option("--title", menu->title, "What stands above; \\n begins a new line")->type_name("TEXT");
    add_number(app, "--timeout", menu->timeout, "Seconds to wait; 0 leaves it to the PIN pad", "SECONDS");
    return [menu](Context& context) { return run_menu(context, *menu); };
}

Run key(CLI::App&) { return run_key; }

Run event(CLI::App& app) {
    const auto options = std::make_shared<EventOptions>();
    app.add_option("kind", options->kinds,
                   "What to wait for: key, stripe, chip, tap or removal; without any, all but the last")
        ->check(CLI::IsMember({"key", "stripe", "chip", "tap", "removal"}).description(""));
    add_number(app, "--timeout", options->timeout, "Seconds to wait", "SECONDS");
    return [options](Context& context) { return run_event(context, *options); };
}

}  // namespace quorvel::cli::setup
