// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors

// A till for the exam: a whole sale by chip, stripe or contactless, which is right to the exam; and with --mistake one
// that makes exactly one mistake, of those that cost shops money.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <thread>
#include <unistd.h>

#include "quorvel/quorvel.hpp"

namespace {

using namespace std::chrono_literals;
using quorvel::CardType, quorvel::FcxAnswer, quorvel::GoxAnswer, quorvel::Status;

const std::vector<std::string> kMistakes{
    "none",
    // Of the decision.
    "paid-when-online", "ignores-gox-status", "ignores-gox-decline", "ignores-fcx", "never-tells-card", "gox-twice",
    "accepts-any-code", "lies-to-card", "pays-stripe-unasked", "pays-contactless-unasked",
    // Of what is lost.
    "retries-fcx", "not-paid-when-lost", "paid-when-lost", "no-reversal-when-card-declines", "forgets-late-yes",
    // Of the amount.
    "amount-times-100", "amount-differs-in-gox", "drops-cents", "amount-in-32-bits", "hands-out-cash",
    // Of the tables.
    "ignores-tables-version", "loads-tables-halfway",
    // Of the end.
    "never-closes", "leaves-card-inside", "waits-forever", "leaves-without-can", "holds-port", "swallows-cancel",
    "dies-of-interrupt"};

struct Settings {
    std::string port;
    uint64_t cents = 0;
    std::string host = "approves";
    std::string mistake = "none";
    unsigned patience = 60;
} settings;

bool makes(std::string_view mistake) { return settings.mistake == mistake; }

std::atomic<bool> stopped = false;
std::atomic<quorvel::Link*> linkToStop = nullptr;
extern "C" void stop(int) {
    stopped = true;
    if (quorvel::Link* link = linkToStop) { link->cancel(); }
}

struct Stopped : std::runtime_error {
    Stopped() : runtime_error("given up at the till") {}
};

enum class Outcome { kPaid = 0, kNotPaid = 5, kUnknown = 6 };

class Till {
    using Decision = GoxAnswer::Decision;

    // The PIN pad has time-outs of its own; the deadline is for one that never answers.
    template <typename Request>
    auto wait(const Request& request) {
        if (stopped) { throw Stopped(); }
        auto wait = session_.start(request);
        const auto limit = std::chrono::seconds(settings.patience) + 1s;
        if (makes("leaves-without-can")) {
            const auto deadline = std::chrono::steady_clock::now() + limit;
            for (; std::chrono::steady_clock::now() < deadline; std::this_thread::sleep_for(10ms)) {
                if (auto answer = wait.poll()) { return std::move(*answer); }
            }
            std::_Exit(static_cast<int>(outcome_));
        }
        return makes("waits-forever") ? wait.get() : wait.get(limit);
    }

public:
    explicit Till(quorvel::Session& session) : session_(session) {}

    // Throws what has gone wrong; the outcome stands.
    void sell() {
        prepare_tables();
        const auto card = read_card();
        if (card.type == CardType::chip || card.type == CardType::contactless) { return decide(card); }
        const bool paid = makes("pays-stripe-unasked") || ask() == "00";
        outcome_ = paid ? Outcome::kPaid : Outcome::kNotPaid;
    }

    void give_back() {
        if (!makes("leaves-card-inside")) { static_cast<void>(wait(quorvel::Rmc{"REMOVE THE CARD"})); }
    }

    [[nodiscard]] Outcome outcome() const { return outcome_; }
    [[nodiscard]] bool reverse() const { return authorised_ && outcome_ != Outcome::kPaid && !forgets_; }

private:
    [[nodiscard]] static std::optional<std::chrono::seconds> timeout() {
        if (makes("waits-forever") || makes("leaves-without-can")) { return std::nullopt; }
        return std::chrono::seconds(settings.patience);
    }

    [[nodiscard]] static uint64_t amount() {
        if (makes("amount-times-100")) { return settings.cents * 100; }
        if (makes("drops-cents")) { return settings.cents / 100 * 100; }
        return makes("amount-in-32-bits") ? settings.cents & UINT32_MAX : settings.cents;
    }

    void prepare_tables() {
        constexpr std::string_view kVersion = "EXAMTILL01";
        const auto loaded = session_.run(quorvel::Gts{});
        if ((loaded.ok() && *loaded == kVersion) || makes("ignores-tables-version")) { return; }
        constexpr std::string_view kRecords[]{"0561030107A000000003101000000000000000000001VISA CREDITO",
                                              "0541030207A000000004101000000000000000000001MASTERCARD",
                                              "0501030307A000000003201000000000000000000002DEBITO",
                                              "0551040107A000000651000000000000000000000001ELO CREDITO"};
        if (makes("loads-tables-halfway")) {
            session_.run(quorvel::Tli{0, kVersion}).require();
            session_.run(quorvel::Tlr{kRecords[0]}).require();
            return;
        }
        quorvel::Tables tables;
        for (const std::string_view record : kRecords) { tables.add(record); }
        tables.load(session_, 0, kVersion).require();
    }

    // A chip that cannot be read makes way for the stripe.
    quorvel::CardAnswer read_card() {
        for (int tries = 1;; ++tries) {
            quorvel::Gcx asked{
                .amount = amount(), .currency = 986, .type = 0, .contactless = true, .timeout = timeout()};
            if (makes("hands-out-cash")) { asked.cashback = uint64_t{5000}; }
            auto card = wait(asked);
            if (card.ok() && card->type) { return *card; }
            const bool fallback = card.status() == Status::dumb_card || card.status() == Status::card_error;
            const bool again = fallback && tries < 3;
            if (!again && !(makes("swallows-cancel") && card.status() == Status::cancel)) {
                throw quorvel::Refused("GCX", card.status());
            }
            if (fallback) { wait(quorvel::Rmc{"REMOVE THE CARD"}).require(); }
        }
    }

    void decide(const quorvel::CardAnswer& card) {
        if (!card.acquirer()) { throw std::runtime_error("no table record"); }
        const quorvel::Gox go{.acquirer = *card.acquirer(),
                              .type = 0,
                              .amount = amount() + (makes("amount-differs-in-gox") ? 1 : 0),
                              .currency = 986,
                              .risk = quorvel::risk(0),
                              .tags = quorvel::Tags{0x82, 0x95, 0x9F02, 0x9F10, 0x9F26, 0x9F27, 0x9F36, 0x9F37},
                              .timeout = timeout()};
        auto answer = wait(go);
        if (makes("gox-twice")) { static_cast<void>(wait(go)); }
        if (!answer.ok() && makes("ignores-gox-status")) { return settle(ask()); }
        const auto decision = std::move(answer).require().decision;
        const bool declined = decision == Decision::declined;
        if (!decision || (declined && !makes("ignores-gox-decline"))) { return; }
        if (declined) { return settle(ask()); }
        const bool unasked = card.type == CardType::contactless && makes("pays-contactless-unasked");
        if (decision == Decision::approved || makes("paid-when-online") || unasked) { return settle("00"); }
        const auto code = ask();
        if (card.type == CardType::contactless) { return settle(code); }
        if (makes("never-tells-card") && code != "00") { return; }
        finish(code);
    }

    void settle(std::optional<std::string_view> code) {
        if (code == "00") { outcome_ = Outcome::kPaid; }
    }

    // Played. One that answers late has been asked, and may believe in a sale.
    std::optional<std::string_view> ask() {
        authorised_ = settings.host == "approves" || settings.host == "late";
        forgets_ = settings.host == "late" && makes("forgets-late-yes");
        if (settings.host == "approves" || (settings.host == "declines" && makes("accepts-any-code"))) { return "00"; }
        return settings.host == "declines" ? std::optional<std::string_view>("05") : std::nullopt;
    }

    // An answer that is lost leaves the outcome unknown; a status is one: the card has not approved.
    void finish(std::optional<std::string_view> code) {
        outcome_ = authorised_ ? Outcome::kUnknown : Outcome::kNotPaid;
        const quorvel::Fcx last{.response_code = makes("lies-to-card") ? "00" : code, .timeout = timeout()};
        try {
            conclude(wait(last), code);
        } catch (const std::exception&) {
            if (makes("not-paid-when-lost")) { outcome_ = Outcome::kNotPaid, forgets_ = true; }
            if (makes("paid-when-lost")) { outcome_ = Outcome::kPaid; }
            if (!makes("retries-fcx")) { throw; }
            conclude(wait(last), code);
        }
    }

    void conclude(const quorvel::Answer<FcxAnswer>& end, std::optional<std::string_view> code) {
        const bool approved = end.ok() && end->decision == FcxAnswer::Decision::approved;
        const bool paid = approved || (makes("ignores-fcx") && code == "00");
        outcome_ = paid ? Outcome::kPaid : Outcome::kNotPaid;
        if (makes("no-reversal-when-card-declines")) { forgets_ = true; }
    }

    quorvel::Session& session_;
    Outcome outcome_ = Outcome::kNotPaid;
    bool authorised_ = false;
    bool forgets_ = false;
};

// What goes wrong is told and ends this step only.
template <typename Step>
void attempt(const Step& step) {
    try {
        step();
    } catch (const std::exception& error) { std::cerr << error.what() << '\n'; }
}

// A child that has the port open when the till has ended.
void hold_port() {
    if (::fork() != 0) { return; }
    std::signal(SIGINT, SIG_IGN);
    ::sleep(30);
    std::_Exit(0);
}

int tell(const Till& till) {
    if (till.reverse()) { std::cout << "REVERSE" << std::endl; }
    return static_cast<int>(till.outcome());
}

int run() {
    int said = static_cast<int>(Outcome::kNotPaid);
    attempt([&] {
        quorvel::Link link(settings.port);
        linkToStop = &link;
        auto session = link.open();
        Till till(session);
        attempt([&] { till.sell(); });
        said = tell(till);
        stopped = false;
        attempt([&] { till.give_back(); });
        if (makes("never-closes")) { std::_Exit(said); }
        if (makes("holds-port")) { hold_port(); }
        linkToStop = nullptr;
        session.close();
    });
    linkToStop = nullptr;
    return said;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("A till that sells something", "till");
    app.add_option("--port", settings.port)->required();
    app.add_option("--cents", settings.cents)->required();
    app.add_option("--host", settings.host)->check(CLI::IsMember({"approves", "declines", "unreachable", "late"}));
    app.add_option("--mistake", settings.mistake)->check(CLI::IsMember(kMistakes));
    app.add_option("--patience", settings.patience, "Seconds for each step");
    CLI11_PARSE(app, argc, argv);
    if (!makes("dies-of-interrupt")) { std::signal(SIGINT, stop); }
    return run();
}
