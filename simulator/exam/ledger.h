// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_EXAM_LEDGER_H
#define QUORVEL_SIMULATOR_EXAM_LEDGER_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/exam/outcome.h"
#include "simulator/exam/till.h"
#include "simulator/watch/exchange.h"
#include "simulator/watch/trace.h"

namespace quorvel::sim::exam {

// What a sale has come to, as the PIN pad knows it, and so what a till may say about it. It is told all on one thread.
class Ledger {
public:
    void crossed(const Traffic& traffic);
    void exchanged(const Exchange& exchange);
    // The till was told to stop, the line was cut.
    void interrupted();
    void cut() { cut_ = true; }

    // What is right to say when the acquirer that the till plays does so.
    [[nodiscard]] Outcomes allowed(Host host) const;
    // "the card has approved, and the answer was lost".
    [[nodiscard]] std::string words() const;

    // What the host has told the PIN pad to be the amount, in the units of the currency.
    struct Amount {
        std::string command;
        uint64_t cents = 0;
    };
    [[nodiscard]] const std::vector<Amount>& amounts() const noexcept { return amounts_; }
    // What it was asked to hand out besides.
    [[nodiscard]] const std::vector<Amount>& cashbacks() const noexcept { return cashbacks_; }
    // A card was told that the acquirer has said yes.
    [[nodiscard]] bool told_yes() const noexcept { return toldYes_; }
    // Some command was asked for that cannot do without the amount.
    [[nodiscard]] bool went_on() const noexcept { return go_.asked; }
    [[nodiscard]] bool was_cut() const noexcept { return cut_; }
    [[nodiscard]] bool was_struck() const noexcept { return struck_; }
    [[nodiscard]] bool was_interrupted() const noexcept { return interrupted_; }
    [[nodiscard]] bool asked_for_removal() const noexcept { return removal_; }
    // The card has asked for the acquirer and was told nothing in the end, though the till had heard it.
    [[nodiscard]] bool left_undecided() const;

private:
    // How much of an answer the till can have.
    enum class Delivery { kNever, kMaybe, kWhole };

    struct Step {
        bool asked = false;
        Delivery delivery = Delivery::kNever;
        // The card's, by the protocol's number.
        std::optional<char> decision = {};

        [[nodiscard]] bool is_whole() const { return delivery == Delivery::kWhole; }
    };

    [[nodiscard]] Step* step_of(std::string_view id);
    void begin_anew();
    void host_sent(const std::string& id);
    void answered(const Traffic& traffic);
    void read_amounts(const std::string& command, const std::vector<Item>& items);
    void read_answer(const Exchange& exchange, const std::vector<Item>& items);

    [[nodiscard]] Outcomes at_the_end(bool authorised) const;
    [[nodiscard]] Outcomes by_the_card(Host host) const;
    [[nodiscard]] Outcomes settled(Delivery delivery, Host host) const;

    Step card_;
    Step go_;
    Step finish_;
    std::string cardType_;
    std::string current_;
    bool ackLost_ = false;
    bool removal_ = false;
    bool struck_ = false;
    bool cut_ = false;
    bool interrupted_ = false;
    // In the midst of what decides about the money.
    bool early_ = false;
    bool pinAsked_ = false;
    // Behind an approval another card was asked for.
    bool doubled_ = false;
    bool toldYes_ = false;
    std::vector<Amount> amounts_;
    std::vector<Amount> cashbacks_;
};

// The id of the command that the words of a frame are about.
[[nodiscard]] std::string id_in(std::string_view words);

}  // namespace quorvel::sim::exam

#endif
