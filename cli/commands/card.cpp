// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <memory>
#include <string>

#include "cli/amount.h"
#include "cli/command.h"
#include "cli/transaction.h"

namespace quorvel::cli::setup {

namespace {

struct CardOptions {
    std::string amount = "0.00";
    std::optional<uint8_t> acquirer;
    uint8_t timeout = 60;
    bool noTap = false;
};

Outcome run_card(Context& context, const CardOptions& options) {
    const CardRequest request{.amount = parse_amount(options.amount),
                              .acquirer = options.acquirer,
                              .contactless = !options.noTap,
                              .timeout = options.timeout,
                              .whole = context.output.reveals()};
    Link link(context.settings, context.output);
    Items card;
    context.output.notice(options.noTap ? "Insert or swipe the card." : "Insert, swipe or tap the card.");
    read_card(link, request, card);
    link.close();
    return {card_group(card)};
}

}  // namespace

Run card(CLI::App& app) {
    const auto options = std::make_shared<CardOptions>();
    app.add_option("--amount", options->amount, "The amount that the card is told")
        ->type_name("AMOUNT")
        ->capture_default_str();
    app.add_option("--acquirer", options->acquirer, "Look for its applications only")
        ->check(CLI::Range(0, 99).description(""))
        ->type_name("INDEX");
    add_number(app, "--timeout", options->timeout, "Seconds to wait for the card", "SECONDS");
    app.add_flag("--no-tap", options->noTap, "Take no contactless card");
    return [options](Context& context) { return run_card(context, *options); };
}

}  // namespace quorvel::cli::setup
