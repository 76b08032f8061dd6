// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/face/face.h"

#include <algorithm>
#include <fmt/format.h>

#include "simulator/face/display.h"
#include "wire/command.h"

namespace quorvel::sim {

namespace {

// By how many entries the trace is scrolled at once.
constexpr int64_t kPage = 5;
constexpr size_t kShownFindings = 10;

std::string waiting_words(const std::string& id) {
    const wire::Command* command = wire::find_command(id);
    return command != nullptr ? fmt::format("{} {}", id, command->title) : id;
}

View::Card shown(const std::string& name, const Card& card) {
    return {name, card.has_stripe(), card.chip.has_value(), card.contactless.has_value()};
}

}  // namespace

// A way to use the card in the hand.
struct Face::Slot {
    bool (*takes)(const Card& card);
    void (PinPad::*use)(Card card);
    std::string_view done;
    std::string_view refused;
};

constexpr Face::Slot Face::kStripeReader{[](const Card& card) { return card.has_stripe(); }, &PinPad::swipe, "swiped",
                                         "has no stripe"};
constexpr Face::Slot Face::kChipReader{[](const Card& card) { return card.chip.has_value(); }, &PinPad::insert,
                                       "inserted", "has no chip"};
constexpr Face::Slot Face::kAntenna{[](const Card& card) { return card.contactless.has_value(); }, &PinPad::tap,
                                    "tapped", "has no antenna"};

Face::Face(PinPad& pinPad, const Cards& cards, const Feed& feed)
    : pinPad_(pinPad), feed_(feed), textSize_(text_size(pinPad.device().identity.textSize)) {
    for (const std::string& name : cards.names()) { cards_.emplace_back(name, cards.at(name)); }
}

void Face::perform(const Deed& deed) {
    remark_.clear();
    if (const auto* key = std::get_if<Key>(&deed)) { return pinPad_.press(*key); }
    move(std::get<Move>(deed));
}

void Face::move(Move move) {
    switch (move) {
        case Move::kNextCard:
            return take(taken_ + 1);
        case Move::kPreviousCard:
            return take(taken_ + cards_.size() - 1);
        case Move::kSwipe:
            return use(kStripeReader);
        case Move::kInsertOrTakeOut:
            return insert_or_take_out();
        case Move::kTap:
            return use(kAntenna);
        case Move::kEarlier:
            return scroll(-kPage);
        case Move::kLater:
            return scroll(kPage);
        case Move::kNewest:
            return end_.reset();
        case Move::kLeave:
            over_ = true;
    }
}

void Face::take(size_t index) {
    if (!cards_.empty()) { taken_ = index % cards_.size(); }
}

void Face::insert_or_take_out() {
    if (!pinPad_.board().state().cardInserted) { return use(kChipReader); }
    remark_ = "card taken out";
    pinPad_.remove();
}

void Face::use(const Slot& slot) {
    if (cards_.empty()) { return; }
    const auto& [name, card] = cards_[taken_];
    const bool fits = slot.takes(card);
    remark_ = fmt::format("{} {}", name, fits ? slot.done : slot.refused);
    if (fits) { (pinPad_.*slot.use)(card); }
}

// Back at the newest entry it follows the newest again.
void Face::scroll(int64_t entries) {
    const auto newest = static_cast<int64_t>(feed_.end());
    const int64_t end = std::max<int64_t>(static_cast<int64_t>(end_.value_or(feed_.end())) + entries, 1);
    end_ = end < newest ? std::optional(static_cast<uint64_t>(end)) : std::nullopt;
}

// By its number, as it may be another hand that has inserted it.
std::string Face::inserted() const {
    const State state = pinPad_.board().state();
    if (!state.cardInserted) { return ""; }
    const auto isIt = [&](const auto& card) { return card.second.chip && card.second.pan == state.cardNumber; };
    const auto found = std::ranges::find_if(cards_, isIt);
    return found != cards_.end() ? found->first : "a card without a name";
}

View Face::view(size_t rows) const {
    const State state = pinPad_.board().state();
    View view{.port = pinPad_.path(),
              .remark = remark_,
              .screen = pinPad_.screen(),
              .textSize = textSize_,
              .waiting = waiting_words(state.waiting),
              .session = state.session,
              .encrypted = state.encrypted,
              .inserted = inserted(),
              .taken = taken_,
              .trace = feed_.before(end_.value_or(feed_.end()), rows),
              .scrolled = end_.has_value(),
              .findings = feed_.findings(kShownFindings),
              .findingCount = feed_.finding_count()};
    for (const auto& [name, card] : cards_) { view.cards.push_back(shown(name, card)); }
    return view;
}

}  // namespace quorvel::sim
