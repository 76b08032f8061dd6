// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors

// A complete sale by chip card, of so many cents:
//
//     cpp_sale /dev/ttyACM0 1234
//
// The acquirer is played. A third argument is its response code: 00, as without it, approves, any other declines, and
// "none" stands for an acquirer that cannot be reached. Ctrl-C gives up.

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>

#include "quorvel/quorvel.hpp"

using namespace std::chrono_literals;

namespace {

constexpr uint16_t kReais = 986;
constexpr auto kTimeout = 60s;

std::atomic<bool> stopped = false;
std::atomic<quorvel::Link*> linkToStop = nullptr;
extern "C" void stop(int) {
    stopped = true;
    if (quorvel::Link* link = linkToStop) { link->cancel(); }
}
// While one lives, the signal reaches the link.
struct Stoppable {
    explicit Stoppable(quorvel::Link& link) { linkToStop = &link; }
    ~Stoppable() { linkToStop = nullptr; }
    Stoppable(const Stoppable&) = delete;
    Stoppable& operator=(const Stoppable&) = delete;
};

// The PIN pad has time-outs of its own; the deadline is for one that never answers.
template <typename Request>
auto wait_for(quorvel::Session& session, const Request& request) {
    const auto check = [] {
        if (stopped) { throw std::runtime_error("given up at the till"); }
    };
    check();
    auto wait = session.start(request);
    check();
    wait.on_notice([](std::string_view text) { std::cout << "the PIN pad says: " << text << std::endl; });
    try {
        return wait.get(kTimeout + 30s).require();
    } catch (const quorvel::Ended&) {
        check();
        throw;
    }
}

// A till gets the records from its acquirer. These make two applications known, by what the virtual PIN pad reads.
void load_tables(quorvel::Session& session) {
    constexpr std::string_view kVersion = "FIRSTSALE1";
    const auto loaded = session.run(quorvel::Gts{});
    if (loaded.ok() && *loaded == kVersion) { return; }
    quorvel::Tables tables;
    tables.add("0561030107A000000003101000000000000000000001VISA CREDITO");
    tables.add("0541030207A000000004101000000000000000000001MASTERCARD");
    tables.load(session, 0, kVersion).require();
}

// What is known of the money, whatever goes wrong.
struct Sale {
    bool asked = false;     // the acquirer, and it has not declined: it may believe in a sale
    bool approved = false;  // by the card, which has the last word
    bool inDoubt = false;   // the card was told, and has not answered

    [[nodiscard]] const char* outcome() const { return approved ? "APPROVED" : inDoubt ? "UNKNOWN" : "NOT APPROVED"; }
};

// Played: returns the response code, or nothing when nobody answers. A till sends the amount and what the card has
// given for it: `decision` has EMV data, PIN block and the serial number of its key.
std::optional<std::string_view> ask_acquirer(std::string_view answer, const quorvel::GoxAnswer& decision) {
    static_cast<void>(decision);
    std::cout << "the acquirer answers: " << (answer == "none" ? "nothing" : answer) << std::endl;
    return answer == "none" ? std::nullopt : std::optional(answer);
}

void sell(quorvel::Session& session, uint64_t amount, std::string_view answer, Sale& sale) {
    load_tables(session);
    std::cout << "insert the card" << std::endl;
    const auto card = wait_for(session, quorvel::Gcx{.amount = amount,
                                                     .currency = kReais,
                                                     .type = 0,
                                                     .contactless = false,
                                                     .pan_mask = quorvel::PanMask{6, 4},
                                                     .timeout = kTimeout});
    if (card.type != quorvel::CardType::chip || !card.acquirer()) { throw std::runtime_error("no chip card"); }
    if (card.pan) { std::cout << "card " << card.pan->reveal() << std::endl; }

    const auto decision = wait_for(session, quorvel::Gox{.acquirer = *card.acquirer(),
                                                         .type = 0,
                                                         .amount = amount,
                                                         .currency = kReais,
                                                         .risk = quorvel::risk(0),  // ask about every amount
                                                         .tags = quorvel::Tags{0x82, 0x95, 0x9A, 0x9C, 0x5F2A, 0x9F02,
                                                                               0x9F10, 0x9F26, 0x9F27, 0x9F36, 0x9F37},
                                                         .timeout = kTimeout});
    sale.approved = decision.decision == quorvel::GoxAnswer::Decision::approved;
    if (decision.decision != quorvel::GoxAnswer::Decision::online) { return; }
    sale.asked = true;
    const auto code = ask_acquirer(answer, decision);
    if (code && code != "00") { sale.asked = false; }
    sale.inDoubt = true;
    const auto end = wait_for(session, quorvel::Fcx{.response_code = code, .timeout = kTimeout});
    sale.inDoubt = !end.decision;
    sale.approved = end.decision == quorvel::FcxAnswer::Decision::approved;
}

// An error ends this step only. A refusal of FCX is an answer: the card has not approved.
template <typename Step>
void attempt(Sale& sale, const Step& step) {
    try {
        step();
    } catch (const quorvel::Refused& refused) {
        std::cerr << refused.what() << '\n';
        if (refused.command() == "FCX") { sale.inDoubt = false; }
    } catch (const std::exception& error) { std::cerr << error.what() << '\n'; }
}

}  // namespace

int main(int argc, char** argv) {
    const uint64_t amount = argc >= 3 ? std::strtoull(argv[2], nullptr, 10) : 0;
    if (argc > 4 || amount == 0) {
        std::cerr << "usage: " << argv[0] << " PORT CENTS [ANSWER]\n";
        return EXIT_FAILURE;
    }
    Sale sale;
    std::signal(SIGINT, stop);
    attempt(sale, [&] {
        quorvel::Link link(argv[1]);
        const Stoppable stoppable(link);
        auto session = link.open(quorvel::secure);
        attempt(sale, [&] { sell(session, amount, argc == 4 ? argv[3] : "00", sale); });
        stopped = false;
        session.leave(sale.outcome());
        attempt(sale, [&] { wait_for(session, quorvel::Rmc{.text = "REMOVE THE CARD"}); });
        session.close();
    });
    if (sale.asked && !sale.approved) { std::cout << "the acquirer must be told that there was no sale\n"; }
    std::cout << sale.outcome() << '\n';
    return sale.approved ? EXIT_SUCCESS : EXIT_FAILURE;
}
