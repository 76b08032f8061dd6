// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "cli/command.h"
#include "cli/link.h"
#include "cli/secret.h"
#include "cli/text.h"
#include "wire/hex.h"

namespace quorvel::cli::setup {

namespace {

constexpr std::array kMethods{
    wire::Named{"mk-des", PinMethod::mk_wk_des},
    wire::Named{"mk-tdes", PinMethod::mk_wk_tdes},
    wire::Named{"dukpt-des", PinMethod::dukpt_des},
    wire::Named{"dukpt-tdes", PinMethod::dukpt_tdes},
};

struct PinOptions {
    PinMethod method = PinMethod::dukpt_tdes;
    uint8_t key = 0;
    std::string workingKey;
    std::string pan;
    std::string message = "ENTER YOUR PIN";
    uint8_t fewest = 4;
    uint8_t most = 12;
    uint8_t timeout = 60;
};

void require(bool holds, const char* text) {
    if (!holds) { throw Error(Exit::kUsage, text); }
}

// What is wrong is said without repeating it: it may be a key or a card number.
void check(const PinOptions& options) {
    const bool master = options.method <= PinMethod::mk_wk_tdes;
    const size_t keyDigits = options.method == PinMethod::mk_wk_des ? 16 : 32;
    require(
        !master || options.workingKey.size() == keyDigits,
        "With a master key, --working-key gives the enciphered working key: 16 hexadecimal digits for mk-des, 32 for "
        "mk-tdes.");
    require(std::ranges::all_of(options.workingKey, [](unsigned char c) { return std::isxdigit(c) != 0; }),
            "The working key is made of hexadecimal digits.");
    require(std::ranges::all_of(options.pan, [](unsigned char c) { return std::isdigit(c) != 0; }),
            "The card number is made of digits.");
    require(options.pan.size() <= 19, "The card number is too long: at most 19 digits.");
    require(options.message.size() <= 32, "The message is too long: at most 32 characters.");
}

Outcome run_pin(Context& context, PinOptions options) {
    options.workingKey = read_secret(options.workingKey, "working key");
    options.pan = read_secret(options.pan, "card number");
    options.message = to_pin_pad(options.message);
    check(options);
    const wire::Bytes workingKey = wire::from_hex(options.workingKey);
    const Gpn::Entry entry{options.fewest, options.most, options.message};
    Link link(context.settings, context.output);
    context.output.notice("Enter the PIN on the PIN pad.");
    const GpnAnswer answer =
        link.await(Gpn{.method = options.method,
                       .key_index = options.key,
                       .working_key = workingKey.empty() ? std::nullopt : std::optional<Bytes>(workingKey),
                       .pan = options.pan,
                       .entries = std::span(&entry, 1)},
                   std::chrono::seconds(options.timeout));
    link.close();
    Group report{{"PIN block", Secret{std::string(answer.pin_block.reveal())}}};
    if (options.method >= PinMethod::dukpt_des) { report.push_back({"Key serial number", answer.ksn}); }
    return {report};
}

}  // namespace

Run pin(CommandLine& line) {
    const auto options = std::make_shared<PinOptions>();
    line.choice<PinMethod>("--method", options->method, kMethods, "How it is enciphered");
    line.number("--key", options->key, "Index of the key in the PIN pad", "INDEX", 0, 99);
    line.secret("--working-key", options->workingKey,
                "With a master key: where the enciphered working key is, in hexadecimal");
    line.secret("--pan", options->pan, "Where the card number is that goes into the PIN block");
    line.text("--message", options->message, "TEXT", "What is shown meanwhile").shows(options->message);
    line.number("--min", options->fewest, "Fewest digits", "DIGITS", 4, 99);
    line.number("--max", options->most, "Most digits", "DIGITS", 4, 99);
    line.number("--timeout", options->timeout, "Seconds to wait for the PIN", "SECONDS", 1);
    return [options](Context& context) { return run_pin(context, *options); };
}

}  // namespace quorvel::cli::setup
