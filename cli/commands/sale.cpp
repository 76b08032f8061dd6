// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <exception>
#include <fmt/format.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "cli/amount.h"
#include "cli/command.h"
#include "cli/table_file.h"
#include "cli/transaction.h"

namespace quorvel::cli::setup {

namespace {

// What the acquirer that is played here does.
enum class Host { kApproves, kDeclines, kUnreachable };

constexpr std::array kHosts{
    wire::Named{"approves", Host::kApproves},
    wire::Named{"declines", Host::kDeclines},
    wire::Named{"unreachable", Host::kUnreachable},
};

struct SaleOptions {
    std::string amount;
    uint16_t currency = 986;
    std::string floorLimit = "0.00";
    std::string tables;
    Host host = Host::kApproves;
    uint8_t pinKey = 0;
    uint8_t timeout = 60;
    bool keepCard = false;
};

std::string verification_words(const GoxAnswer& result) {
    if (result.pin_blocked) { return "the card's PIN is blocked"; }
    if (result.pin_online) { return "PIN, for the acquirer to check"; }
    if (result.pin_offline) { return "PIN, checked by the card"; }
    return result.signature ? "signature" : "none asked for";
}

enum class Ending { kApproved, kDeclined, kUnknown };

constexpr const char* kEndings[]{"approved", "declined", "unknown"};

// What an acquirer wants to see; never the card number nor the track.
Tags authorisation_tags() {
    return {0x5F24, 0x84,   0x82,   0x95,   0x9A,   0x9C,   0x5F2A, 0x5F34, 0x9F02, 0x9F03,
            0x9F10, 0x9F1A, 0x9F26, 0x9F27, 0x9F33, 0x9F34, 0x9F35, 0x9F36, 0x9F37};
}

// One sale, step by step; each tells the user what comes and leaves a line in the report. From the acquirer's yes on
// money may have moved, so whatever happens then ends in a report that says what has become of it.
class Sale {
public:
    Sale(Context& context, const SaleOptions& options)
        : output_(context.output),
          options_(options),
          amount_(parse_amount(options.amount)),
          floorLimit_(parse_amount(options.floorLimit)),
          timeout_(options.timeout),
          tables_(options.tables.empty() ? context.settings.tables : options.tables) {
        if (floorLimit_ > UINT32_MAX) { throw Error(Exit::kUsage, "The floor limit is too high."); }
        if (!tables_.empty()) { file_ = TableFile::read(tables_); }
        link_.emplace(context.settings, context.output);
    }

    Outcome run() {
        try {
            prepare_tables();
            take_card();
            if (runs_emv(*card_->type)) {
                decide_with_card();
            } else {
                ask_acquirer("the card's data");
                end(authorised_ ? Ending::kApproved : Ending::kDeclined, "the acquirer has said so");
            }
        } catch (const Error& error) { fail(error); }
        give_back();
        say_goodbye();
        return outcome();
    }

private:
    void step(const std::string& command, const char* what, std::string result) {
        steps_.rows.push_back({steps_.rows.size() + 1, command, what, std::move(result)});
    }

    // Before each step that may fail: what it would leave unsaid.
    void begin(const char* command) {
        at_ = command;
        output_.last_words(report(), authorised_ ? std::optional(Exit::kUnknown) : std::nullopt);
    }

    void end(Ending ending, std::string_view why) {
        ending_ = ending;
        why_ = why;
        output_.last_words(report(), exit_of(ending));
    }

    // What an error means for the money: nothing before the acquirer's yes, and after it what can be said of the
    // command that has failed.
    void fail(const Error& error) {
        failure_ = std::current_exception();
        failedWith_ = error.exit();
        // After an answer that makes no sense the line is still there.
        const auto* raised = dynamic_cast<const LibraryError*>(&error);
        lineLost_ = raised != nullptr && raised->code() != ErrorCode::protocol;
        step(at_, "Failed", error.what());
        if (!authorised_) { return end(Ending::kDeclined, "no acquirer has authorised it"); }
        const auto* refused = dynamic_cast<const StatusError*>(&error);
        const auto repeat = repeat_safety(at_, refused != nullptr ? Failure::refused : Failure::lost);
        end(refused != nullptr ? Ending::kDeclined : Ending::kUnknown, repeat.why);
    }

    void prepare_tables() {
        if (!file_) { return; }
        begin("TLI");
        const bool due = table_version(*link_, file_->acquirer) != file_->version;
        if (due) { load_tables(*link_, *file_, output_); }
        step(due ? "TLI TLR TLE" : "GTS", "Load the acquirer tables",
             fmt::format("version {}, {}", file_->version, due ? "loaded" : "there already"));
    }

    void take_card() {
        begin("GCX");
        inside_ = true;
        output_.notice(fmt::format("{}: insert, swipe or tap the card.", amount_words(amount_)));
        const CardRequest request{
            .amount = amount_, .currency = options_.currency, .timeout = timeout_, .whole = output_.reveals()};
        card_ = read_card(*link_, request);
        inside_ = card_->type == CardType::chip;
        step("GCX", "Read the card", card_type_words(*card_->type));
    }

    [[nodiscard]] uint8_t acquirer() const {
        if (const auto index = card_->acquirer()) { return *index; }
        throw Error(Exit::kLink, "The PIN pad does not tell which table record the card has selected.");
    }

    void decide_with_card() {
        begin("GOX");
        output_.notice("Follow the PIN pad: it may ask for the PIN.");
        const GoxAnswer result = link_->await(Gox{.acquirer = acquirer(),
                                                  .key_index = options_.pinKey,
                                                  .type = 0,
                                                  .amount = amount_,
                                                  .currency = options_.currency,
                                                  .risk = risk(static_cast<uint32_t>(floorLimit_)),
                                                  .tags = authorisation_tags(),
                                                  .timeout = timeout_},
                                              timeout_ + kMargin);
        details_.push_back({"Verification", verification_words(result)});
        add_item(details_, "PIN block", result.items, ABECS_RSP_DATID_PP_PINBLK);
        add_item(details_, "Key serial number", result.items, ABECS_RSP_DATID_PP_KSN);
        add_item(details_, "Card to acquirer", result.items, ABECS_RSP_DATID_PP_EMVDATA);
        if (!result.decision) { throw Error(Exit::kLink, "The PIN pad does not tell what the card has decided."); }
        switch (*result.decision) {
            case GoxAnswer::Decision::approved:
                step("GOX", "The card decides", "approved without the acquirer");
                return end(Ending::kApproved, "the card has approved it without the acquirer");
            case GoxAnswer::Decision::declined:
                step("GOX", "The card decides", "declined without the acquirer");
                return end(Ending::kDeclined, "the card has declined it without the acquirer");
            case GoxAnswer::Decision::online:
                break;
        }
        step("GOX", "The card decides", "the acquirer must be asked");
        ask_acquirer("the card's cryptogram");
        if (card_->type == CardType::chip) { return finish(); }
        end(authorised_ ? Ending::kApproved : Ending::kDeclined, "the acquirer has said so");
    }

    [[nodiscard]] std::optional<std::string_view> response_code() const {
        if (options_.host == Host::kUnreachable) { return std::nullopt; }
        return options_.host == Host::kApproves ? "00" : "05";
    }

    // Nobody is asked: this is where an application would send its own message.
    void ask_acquirer(const char* with) {
        const auto code = response_code();
        authorised_ = options_.host == Host::kApproves;
        step("-", "Ask the acquirer (played here)",
             code ? fmt::format("gets {}, {} with code {}", with, authorised_ ? "approves" : "declines", *code)
                  : "cannot be reached");
    }

    void finish() {
        begin("FCX");
        const FcxAnswer result = link_->await(
            Fcx{.response_code = response_code(), .tags = Tags{0x8A, 0x95, 0x9B, 0x9F26, 0x9F27}, .timeout = timeout_},
            timeout_ + kMargin);
        add_item(details_, "Card at the end", result.items, ABECS_RSP_DATID_PP_EMVDATA);
        add_item(details_, "Issuer script results", result.items, ABECS_RSP_DATID_PP_ISRESULTS);
        if (!result.decision) {
            throw Error(Exit::kLink, "The PIN pad does not tell what the card has decided in the end.");
        }
        constexpr const char* kWords[]{"approved", "declined by the card", "declined by the acquirer"};
        const char* words = kWords[static_cast<size_t>(*result.decision)];
        step("FCX", "Tell the card, which has the last word", words);
        const bool approved = *result.decision == FcxAnswer::Decision::approved;
        end(approved ? Ending::kApproved : Ending::kDeclined, approved ? "the card has approved it" : words);
    }

    // What the PIN pad shows at the end, where the sale came to one.
    [[nodiscard]] const char* shown() const {
        return ending_ == Ending::kApproved ? "APPROVED" : failure_ != nullptr ? "" : "DECLINED";
    }

    // The outcome stands, whatever comes of this.
    void give_back() {
        if (!inside_ || options_.keepCard || lineLost_) { return; }
        begin("RMC");
        if (card_) { output_.notice("Remove the card."); }
        const std::string result = have_card_removed(*link_, fmt::format("{:<16}REMOVE THE CARD", shown()), timeout_);
        if (interrupt::requested() && result != kRemoved) { lastText_ = "REMOVE THE CARD"; }
        // Where no card was read there may have been none.
        if (card_) { step("RMC", "Have the card removed", result); }
    }

    void say_goodbye() {
        link_->leave_text(lastText_.empty() ? shown() : lastText_);
        try {
            if (!lineLost_) { link_->close(); }
        } catch (const Interrupted&) {  // the outcome stands
        } catch (const Error& error) { output_.notice(fmt::format("The session was not closed: {}", error.what())); }
        link_.reset();
    }

    [[nodiscard]] static Exit exit_of(Ending ending) {
        return ending == Ending::kApproved ? Exit::kOk : ending == Ending::kDeclined ? Exit::kDeclined : Exit::kUnknown;
    }

    // As far as it has come. Until an ending is known it is the one that would be without another word.
    [[nodiscard]] Group report() const {
        const Ending ending = ending_.value_or(authorised_ ? Ending::kUnknown : Ending::kDeclined);
        const bool reverse = authorised_ && ending != Ending::kApproved;
        Group report{{"Outcome", kEndings[static_cast<size_t>(ending)]},
                     {"Amount", amount_words(amount_)},
                     {"Authorised", authorised_},
                     {"Reverse", reverse},
                     {"Why", ending_ ? why_ : std::string(authorised_ ? "it was cut off: reverse" : "it was cut off")},
                     {"Steps", steps_}};
        if (card_ && card_->type) { report.push_back({"Card", card_group(*card_)}); }
        report.insert(report.end(), details_.begin(), details_.end());
        return report;
    }

    // An error before the acquirer's yes is told as one of any command; after it the outcome counts.
    [[nodiscard]] Outcome outcome() const {
        const bool early = failure_ != nullptr && !authorised_;
        return {.report = report(), .exit = early ? failedWith_ : exit_of(*ending_), .failure = failure_};
    }

    Output& output_;
    const SaleOptions& options_;
    const uint64_t amount_;
    const uint64_t floorLimit_;
    const std::chrono::seconds timeout_;
    const std::string tables_;
    std::optional<TableFile> file_;
    std::optional<Link> link_;
    std::optional<CardAnswer> card_;
    bool authorised_ = false;
    // The command that is on its way.
    std::string at_;
    std::optional<Ending> ending_;
    std::string why_;
    std::exception_ptr failure_;
    Exit failedWith_ = Exit::kOk;
    bool lineLost_ = false;
    // A chip card, or whatever was inserted and could not be read.
    bool inside_ = false;
    // In place of how it ended, for a cardholder whose card is still inside.
    std::string lastText_;
    Group details_;
    Table steps_{{"No", "Command", "Step", "Result"}};
};

}  // namespace

Run sale(CommandLine& line) {
    const auto options = std::make_shared<SaleOptions>();
    line.text("--amount", options->amount, "AMOUNT", "The amount, like 12.34").required();
    line.number("--currency", options->currency, "Its currency's numeric code", "CODE", 0, 999);
    line.text("--floor-limit", options->floorLimit, "AMOUNT", "The acquirer is asked from this amount on")
        .shows(options->floorLimit);
    line.text("--tables", options->tables, "FILE", "Load this file first if the PIN pad has another version");
    line.choice<Host>("--host", options->host, kHosts, "What the acquirer that is played here answers");
    line.number("--pin-key", options->pinKey, "Index of the triple DES DUKPT key for the PIN", "INDEX", 0, 99);
    line.number("--timeout", options->timeout, "Seconds to wait for the card, and for each that follows", "SECONDS", 1);
    line.flag("--keep-card", options->keepCard, "Do not wait until the card is removed");
    return [options](Context& context) { return Sale(context, *options).run(); };
}

}  // namespace quorvel::cli::setup
