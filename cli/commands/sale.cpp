// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "cli/amount.h"
#include "cli/command.h"
#include "cli/table_file.h"
#include "cli/transaction.h"

namespace quorvel::cli::setup {

namespace {

// What the acquirer that is played here does.
enum class Host { kApproves, kDeclines, kUnreachable };

const std::map<std::string, Host> kHosts{
    {"approves", Host::kApproves}, {"declines", Host::kDeclines}, {"unreachable", Host::kUnreachable}};

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

// The first digit of PP_GOXRES.
enum class Decision { kApproved, kDeclined, kOnline };

// PP_GOXRES, a digit for each.
struct GoResult {
    Decision decision = Decision::kDeclined;
    bool signature = false;
    bool pinOffline = false;
    bool pinBlocked = false;
    bool pinOnline = false;

    static GoResult of(const std::string& digits) {
        const bool known = digits.size() >= 6 && digits[0] >= '0' && digits[0] <= '2';
        if (!known) { throw Error(Exit::kLink, "The PIN pad does not tell what the card has decided."); }
        return {static_cast<Decision>(digits[0] - '0'), digits[1] != '0', digits[2] != '0', digits[4] != '0',
                digits[5] != '0'};
    }
};

std::string verification_words(const GoResult& result) {
    if (result.pinBlocked) { return "the card's PIN is blocked"; }
    if (result.pinOnline) { return "PIN, for the acquirer to check"; }
    if (result.pinOffline) { return "PIN, checked by the card"; }
    return result.signature ? "signature" : "none asked for";
}

// One sale, step by step; each tells the user what comes and leaves a line in the report.
class Sale {
public:
    Sale(Context& context, const SaleOptions& options)
        : output_(context.output),
          options_(options),
          amount_(parse_amount(options.amount)),
          floorLimit_(parse_amount(options.floorLimit)),
          tables_(options.tables.empty() ? context.settings.tables : options.tables) {
        if (floorLimit_ > UINT32_MAX) { throw Error(Exit::kUsage, "The floor limit is too high."); }
        if (!tables_.empty()) { file_ = TableFile::read(tables_); }
        link_.emplace(context.settings, context.output);
    }

    Outcome run() {
        prepare_tables();
        take_card();
        const bool approved = runs_emv(type_) ? decide_with_card() : ask_acquirer("the card's data");
        const char* outcome = approved ? "APPROVED" : "DECLINED";
        give_back(outcome);
        link_->leave_text(outcome);
        link_->close();
        Group report{
            {"Outcome", outcome}, {"Amount", amount_words(amount_)}, {"Steps", steps_}, {"Card", card_group(card_)}};
        for (Field& field : details_) { report.push_back(std::move(field)); }
        return {std::move(report), approved ? Exit::kOk : Exit::kDeclined};
    }

private:
    void step(const char* command, const char* what, std::string result) {
        steps_.rows.push_back({steps_.rows.size() + 1, command, what, std::move(result)});
    }

    void prepare_tables() {
        if (!file_) { return; }
        const bool due = table_version(*link_, file_->acquirer) != file_->version;
        if (due) { load_tables(*link_, *file_, output_); }
        step(due ? "TLI TLR TLE" : "GTS", "Load the acquirer tables",
             fmt::format("version {}, {}", file_->version, due ? "loaded" : "there already"));
    }

    void take_card() {
        output_.notice(fmt::format("{}: insert, swipe or tap the card.", amount_words(amount_)));
        const CardRequest request{
            .amount = amount_, .currency = options_.currency, .timeout = options_.timeout, .whole = output_.reveals()};
        read_card(*link_, request, card_);
        type_ = card_type(card_);
        step("GCX", "Read the card", card_type_words(type_));
    }

    // The first two digits of PP_AIDTABINFO.
    [[nodiscard]] uint8_t acquirer() const {
        const std::string record = card_.raw(ABECS_RSP_DATID_PP_AIDTABINFO);
        const bool known = record.size() >= 2 && std::isdigit(static_cast<unsigned char>(record[0])) != 0
                           && std::isdigit(static_cast<unsigned char>(record[1])) != 0;
        if (!known) { throw Error(Exit::kLink, "The PIN pad does not tell which table record the card has selected."); }
        return static_cast<uint8_t>(std::stoi(record.substr(0, 2)));
    }

    bool decide_with_card() {
        output_.notice("Follow the PIN pad: it may ask for the PIN.");
        Items decision;
        go_on_chip(*link_,
                   {.amount = amount_,
                    .currency = options_.currency,
                    .acquirer = acquirer(),
                    .floorLimit = static_cast<uint32_t>(floorLimit_),
                    .pinKey = options_.pinKey},
                   decision);
        const GoResult result = GoResult::of(decision.raw(ABECS_RSP_DATID_PP_GOXRES));
        details_.push_back({"Verification", verification_words(result)});
        decision.add(details_, "PIN block", ABECS_RSP_DATID_PP_PINBLK);
        decision.add(details_, "Key serial number", ABECS_RSP_DATID_PP_KSN);
        decision.add(details_, "Card to acquirer", ABECS_RSP_DATID_PP_EMVDATA);
        switch (result.decision) {
            case Decision::kApproved:
                step("GOX", "The card decides", "approved without the acquirer");
                return true;
            case Decision::kDeclined:
                step("GOX", "The card decides", "declined without the acquirer");
                return false;
            case Decision::kOnline:
                break;
        }
        step("GOX", "The card decides", "the acquirer must be asked");
        const bool approved = ask_acquirer("the card's cryptogram");
        return type_ == CardType::kChip ? finish() : approved;
    }

    [[nodiscard]] std::optional<std::string> response_code() const {
        if (options_.host == Host::kUnreachable) { return std::nullopt; }
        return options_.host == Host::kApproves ? "00" : "05";
    }

    // Nobody is asked: this is where an application would send its own message.
    bool ask_acquirer(const char* with) {
        const auto code = response_code();
        const bool approved = options_.host == Host::kApproves;
        step("-", "Ask the acquirer (played here)",
             code ? fmt::format("gets {}, {} with code {}", with, approved ? "approves" : "declines", *code)
                  : "cannot be reached");
        return approved;
    }

    bool finish() {
        Items decision;
        finish_chip(*link_, response_code(), decision);
        decision.add(details_, "Card at the end", ABECS_RSP_DATID_PP_EMVDATA);
        decision.add(details_, "Issuer script results", ABECS_RSP_DATID_PP_ISRESULTS);
        const auto result = decision.number(ABECS_RSP_DATID_PP_FCXRES);
        if (!result) { throw Error(Exit::kLink, "The PIN pad does not tell what the card has decided in the end."); }
        step("FCX", "Tell the card, which has the last word",
             *result == 0   ? "approved"
             : *result == 1 ? "declined by the card"
                            : "declined by the acquirer");
        return *result == 0;
    }

    void give_back(const char* outcome) {
        if (type_ != CardType::kChip || options_.keepCard) { return; }
        output_.notice("Remove the card.");
        const std::string message = fmt::format("{:<16}REMOVE THE CARD", outcome);
        const int32_t status =
            link_->wait([&] { abecs_cmd_rmc(link_->get(), message.c_str()); },
                        [&](char* notification) { return abecs_cmd_rmc_response(link_->get(), notification); });
        step("RMC", "Have the card removed", status == ABECS_RSP_STAT_ST_OK ? "removed" : "still there");
    }

    Output& output_;
    const SaleOptions& options_;
    const uint64_t amount_;
    const uint64_t floorLimit_;
    const std::string tables_;
    std::optional<TableFile> file_;
    std::optional<Link> link_;
    Items card_;
    CardType type_ = CardType::kStripe;
    Group details_;
    Table steps_{{"No", "Command", "Step", "Result"}};
};

}  // namespace

Run sale(CLI::App& app) {
    const auto options = std::make_shared<SaleOptions>();
    app.add_option("--amount", options->amount, "The amount, like 12.34")->required()->type_name("AMOUNT");
    add_number(app, "--currency", options->currency, "Its currency's numeric code", "CODE", 0, 999);
    app.add_option("--floor-limit", options->floorLimit, "The acquirer is asked from this amount on")
        ->type_name("AMOUNT")
        ->capture_default_str();
    app.add_option("--tables", options->tables, "Load this file first if the PIN pad has another version")
        ->type_name("FILE");
    app.add_option("--host", options->host, "What the acquirer that is played does: approves, declines or unreachable")
        ->transform(CLI::CheckedTransformer(kHosts).description(""))
        ->type_name("ANSWER")
        ->default_str("approves");
    add_number(app, "--pin-key", options->pinKey, "Index of the triple DES DUKPT key for the PIN", "INDEX", 0, 99);
    add_number(app, "--timeout", options->timeout, "Seconds to wait for the card", "SECONDS");
    app.add_flag("--keep-card", options->keepCard, "Do not wait until the card is removed");
    return [options](Context& context) { return Sale(context, *options).run(); };
}

}  // namespace quorvel::cli::setup
