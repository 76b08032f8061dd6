// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command.h"
#include "cli/link.h"
#include "cli/text.h"

namespace quorvel::cli::setup {

namespace {

constexpr size_t kShortMessage = 32;
constexpr size_t kLongMessage = 128;

// The text stays when the session is over, which a short one and a long one do by different commands.
Outcome run_display(Context& context, const std::string& given) {
    const std::string text = lines_to_pin_pad(given);
    if (text.size() > kLongMessage) { throw Error(Exit::kUsage, "A text has at most 128 characters."); }
    Link link(context.settings, context.output);
    if (text.size() <= kShortMessage && text.find('\r') == std::string::npos) {
        link.ask(Dsp{text});
    } else {
        link.ask(Dex{text});
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

constexpr size_t kMostOptions = 20;
constexpr size_t kOptionWidth = 24;
// Of a PIN pad that is not told how long to wait, nobody knows how long it does.
constexpr std::chrono::seconds kLongest{300};

Outcome run_menu(Context& context, const MenuOptions& menu) {
    for (const std::string& option : menu.options) {
        const bool plain =
            std::ranges::all_of(option, [](unsigned char c) { return c < 0x80 && std::isalnum(c) != 0; });
        if (!plain || option.empty() || option.size() > kOptionWidth) {
            throw Error(Exit::kUsage, fmt::format("'{}' is no option: it takes 1 to 24 letters and digits.", option));
        }
    }
    const std::string title = lines_to_pin_pad(menu.title);
    if (title.size() > kLongMessage) { throw Error(Exit::kUsage, "A title has at most 128 characters."); }
    const std::vector<std::string_view> options(menu.options.begin(), menu.options.end());
    const std::chrono::seconds timeout(menu.timeout);
    Link link(context.settings, context.output);
    context.output.notice("Choose on the PIN pad.");
    const uint32_t chosen = link.await(Mnu{options, title, timeout}, menu.timeout == 0 ? kLongest : timeout + kMargin);
    link.close();
    const bool known = chosen >= 1 && chosen <= menu.options.size();
    return {{{"Choice", chosen}, {"Option", known ? menu.options[chosen - 1] : "unknown"}}};
}

// GKY has no time-out of its own.
Outcome run_key(Context& context, uint8_t timeout) {
    Link link(context.settings, context.output);
    context.output.notice("Press ENTER, CLEAR, CANCEL or a function key on the PIN pad.");
    const Key key = link.await(Gky{}, std::chrono::seconds(timeout));
    link.close();
    return {{{"Key", std::string(quorvel::name(key))}}};
}

struct RemoveOptions {
    std::string message = "REMOVE THE CARD";
    uint8_t timeout = 60;
};

// RMC has no time-out of its own.
Outcome run_remove(Context& context, const RemoveOptions& options) {
    const std::string message = to_pin_pad(options.message);
    if (message.size() > kShortMessage) { throw Error(Exit::kUsage, "The message has at most 32 characters."); }
    Link link(context.settings, context.output);
    context.output.notice("Remove the card.");
    link.await(Rmc{message}, std::chrono::seconds(options.timeout));
    link.close();
    return {{{"Removed", true}}};
}

struct NumberOptions {
    uint16_t prompt = 0;
    uint8_t fewest = 0;
    uint8_t most = 32;
    uint8_t timeout = 0;
};

// What somebody types may be anything, a password too.
Outcome run_number(Context& context, const NumberOptions& options) {
    const std::chrono::seconds timeout(options.timeout);
    Link link(context.settings, context.output);
    context.output.notice("Type the number on the PIN pad.");
    const quorvel::Secret typed = link.await(Gcd{options.prompt, options.fewest, options.most, timeout},
                                             options.timeout == 0 ? kLongest : timeout + kMargin);
    link.close();
    return {{{"Digits", typed.size()}, {"Number", Secret{std::string(typed.reveal())}}}};
}

}  // namespace

Run display(CommandLine& line) {
    const auto text = std::make_shared<std::string>();
    line.text("text", *text, "TEXT", "What to show, up to 128 characters; \\n begins a new line").required();
    return [text](Context& context) { return run_display(context, *text); };
}

Run menu(CommandLine& line) {
    const auto menu = std::make_shared<MenuOptions>();
    line.text("option", menu->options, "OPTION", "1 to 20 options of up to 24 letters and digits")
        .required()
        .count(1, static_cast<int>(kMostOptions));
    line.text("--title", menu->title, "TEXT", "What stands above; \\n begins a new line");
    line.number("--timeout", menu->timeout, "Seconds to wait; 0 leaves it to the PIN pad", "SECONDS");
    return [menu](Context& context) { return run_menu(context, *menu); };
}

Run key(CommandLine& line) {
    const auto timeout = std::make_shared<uint8_t>(uint8_t{60});
    line.number("--timeout", *timeout, "Seconds to wait", "SECONDS", 1);
    return [timeout](Context& context) { return run_key(context, *timeout); };
}

Run remove(CommandLine& line) {
    const auto options = std::make_shared<RemoveOptions>();
    line.text("--message", options->message, "TEXT", "What is shown meanwhile").shows(options->message);
    line.number("--timeout", options->timeout, "Seconds to wait", "SECONDS", 1);
    return [options](Context& context) { return run_remove(context, *options); };
}

Run number(CommandLine& line) {
    const auto options = std::make_shared<NumberOptions>();
    line.number("--prompt", options->prompt, "Index of the text that asks for it, one of the PIN pad's own", "INDEX", 0,
                UINT16_MAX);
    line.number("--min", options->fewest, "Fewest digits", "DIGITS", 0, 32);
    line.number("--max", options->most, "Most digits", "DIGITS", 0, 32);
    line.number("--timeout", options->timeout, "Seconds to wait; 0 leaves it to the PIN pad", "SECONDS");
    return [options](Context& context) { return run_number(context, *options); };
}

}  // namespace quorvel::cli::setup
