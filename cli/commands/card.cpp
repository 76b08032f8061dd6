// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fmt/format.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/amount.h"
#include "cli/command.h"
#include "cli/transaction.h"
#include "wire/hex.h"
#include "wire/param_id.h"
#include "wire/tlv.h"

namespace quorvel::cli::setup {

namespace {

struct CardOptions {
    std::string amount = "0.00";
    std::optional<uint8_t> acquirer;
    uint8_t timeout = 60;
    bool noTap = false;
    bool keepCard = false;
};

Outcome run_card(Context& context, const CardOptions& options) {
    const CardRequest request{.amount = parse_amount(options.amount),
                              .acquirer = options.acquirer,
                              .contactless = !options.noTap,
                              .timeout = std::chrono::seconds(options.timeout),
                              .whole = context.output.reveals()};
    Link link(context.settings, context.output);
    context.output.notice(options.noTap ? "Insert or swipe the card." : "Insert, swipe or tap the card.");
    const auto giveBack = [&] {
        if (options.keepCard || interrupt::requested()) { return; }
        static_cast<void>(have_card_removed(link, "REMOVE THE CARD", request.timeout));
    };
    std::optional<CardAnswer> card;
    try {
        card = read_card(link, request);
    } catch (const StatusError&) {
        giveBack();
        throw;
    }
    if (card->type == CardType::chip) { giveBack(); }
    link.close();
    return {card_group(*card)};
}

// In clear, as the PIN pad gives the tracks, and not the number, without a key.
Outcome run_tracks(Context& context) {
    Link link(context.settings, context.output);
    const GtkAnswer answer = link.ask(Gtk{.tracks = "1110"});
    link.close();
    Group report;
    const auto add = [&](const char* label, const std::optional<quorvel::Secret>& text) {
        if (text) { report.push_back({label, Secret{std::string(text->reveal())}}); }
    };
    add("Track 1", answer.track1);
    add("Track 2", answer.track2);
    add("Track 3", answer.track3);
    return {report};
}

wire::Bytes tags_of(const std::string& digits) {
    try {
        wire::Bytes bytes = wire::from_hex(digits);
        if (!wire::split_tags(bytes).empty()) { return bytes; }
    } catch (const std::exception&) {}  // neither is the tags of data objects
    throw Error(Exit::kUsage, fmt::format("'{}' is no tag.", digits), "Write it like 9F26 or 82.");
}

Outcome run_emv(Context& context, const std::vector<std::string>& tags) {
    wire::Bytes wanted;
    for (const std::string& tag : tags) { wire::append(wanted, tags_of(tag)); }
    Link link(context.settings, context.output);
    const quorvel::Secret objects = link.ask(GenCardData{Tags(wanted)});
    link.close();
    return {{{"EMV data", value_of(wire::param_item(wire::pp::kEmvData, objects.bytes()))}}};
}

}  // namespace

Run tracks(CommandLine&) { return run_tracks; }

Run emv(CommandLine& line) {
    const auto tags = std::make_shared<std::vector<std::string>>();
    line.text("tag", *tags, "TAG", "Tags of data objects, such as 9F26 and 82").required();
    return [tags](Context& context) { return run_emv(context, *tags); };
}

Run card(CommandLine& line) {
    const auto options = std::make_shared<CardOptions>();
    line.text("--amount", options->amount, "AMOUNT", "The amount that the card is told").shows(options->amount);
    line.number("--acquirer", options->acquirer, "Look for its applications only", "INDEX", 0, 99);
    line.number("--timeout", options->timeout, "Seconds to wait for the card", "SECONDS", 1);
    line.flag("--no-tap", options->noTap, "Take no contactless card");
    line.flag("--keep-card", options->keepCard, "Do not wait until the card is removed");
    return [options](Context& context) { return run_card(context, *options); };
}

}  // namespace quorvel::cli::setup
