// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/exam/ledger.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fmt/format.h>

#include "wire/command.h"
#include "wire/frame.h"
#include "wire/hex.h"
#include "wire/packet.h"

namespace quorvel::sim::exam {

namespace {

constexpr std::string_view kEnciphered = "enciphered ";
constexpr std::string_view kErrorId = "ERR";

// What the till has in the end if it waits long enough.
constexpr std::array<std::string_view, 3> kOnlyLater{"delay", "slow-bytes", "split"};

constexpr std::array<std::string_view, 3> kAmountNames{"SPE_AMOUNT", "GCR_AMOUNT", "GOC_AMOUNT"};
constexpr std::array<std::string_view, 2> kCashbackNames{"SPE_CASHBACK", "GOC_CASHBACK"};
constexpr uint32_t kAmountTag = 0x9F02;
constexpr size_t kAmountDigits = 12;

const Item* named(const std::vector<Item>& items, std::string_view name) {
    const auto found = std::ranges::find(items, name, &Item::name);
    return found != items.end() && !found->value.empty() ? &*found : nullptr;
}

bool is_one_of(std::string_view id, std::string_view one, std::string_view other) { return id == one || id == other; }

template <size_t kCount>
bool has(const std::array<std::string_view, kCount>& names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

// None of what is no amount: the PIN pad says so itself.
std::optional<uint64_t> amount_in(std::string_view digits) {
    uint64_t amount = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), amount);
    const bool whole = error == std::errc() && end == digits.data() + digits.size();
    return whole && digits.size() == kAmountDigits ? std::optional(amount) : std::nullopt;
}

std::string text_of(const Item& item) { return {item.value.begin(), item.value.end()}; }

// That the issuer was there, and that it has approved.
bool tells_yes(const std::vector<Item>& items) {
    const auto begins = [&](std::string_view name, std::string_view with) {
        const Item* const item = named(items, name);
        return item != nullptr && text_of(*item).starts_with(with);
    };
    return (begins("SPE_FCXOPT", "0") && begins("SPE_ARC", "00"))
           || (begins("FNC_COMMST", "0") && begins("FNC_ARC", "00"));
}

std::string delivery_words(bool whole) { return whole ? "the till was told" : "the answer did not come through whole"; }

}  // namespace

std::string id_in(std::string_view words) {
    if (words.starts_with(kEnciphered)) { words.remove_prefix(kEnciphered.size()); }
    return std::string(words.substr(0, wire::kIdWidth));
}

Ledger::Step* Ledger::step_of(std::string_view id) {
    if (is_one_of(id, "GCX", "GCR")) { return &card_; }
    if (is_one_of(id, "GOX", "GOC")) { return &go_; }
    return is_one_of(id, "FCX", "FNC") ? &finish_ : nullptr;
}

void Ledger::crossed(const Traffic& traffic) {
    struck_ |= !traffic.fault.empty();
    if (traffic.fault == "hang-up") { cut_ = true; }
    if (traffic.fault == "lost-ack") { ackLost_ = true; }
    const bool frame = !traffic.wire.empty() && traffic.wire.front() == wire::control::kSyn;
    const std::string id = id_in(traffic.words);
    if (traffic.sender == Sender::kHost && frame && wire::find_command(id) != nullptr) { return host_sent(id); }
    if (traffic.sender == Sender::kPinPad && (id == current_ || id == kErrorId)) { answered(traffic); }
}

void Ledger::host_sent(const std::string& id) {
    if (step_of(id) == &card_) { begin_anew(); }
    if (Step* const step = step_of(id)) { *step = {.asked = true}; }
    pinAsked_ |= id == "GPN";
    removal_ |= id == "RMC";
    current_ = id;
    ackLost_ = false;
}

// A card that is read anew begins a sale anew. Whoever does so behind one that was made has the customer pay twice.
void Ledger::begin_anew() {
    doubled_ |= finish_.decision == '0';
    go_ = finish_ = {};
    cardType_.clear();
}

void Ledger::answered(const Traffic& traffic) {
    Step* const step = step_of(current_);
    if (step == nullptr) { return; }
    const bool later = std::ranges::find(kOnlyLater, traffic.fault) != kOnlyLater.end();
    step->delivery = traffic.fault.empty() && !ackLost_ ? Delivery::kWhole
                     : later || traffic.fault.empty()   ? Delivery::kMaybe
                                                        : Delivery::kNever;
}

void Ledger::exchanged(const Exchange& exchange) {
    const std::vector<Item> items = wire::take_apart(Sender::kHost, exchange.request).items;
    read_amounts(exchange.command, items);
    toldYes_ |= tells_yes(items);
    read_answer(exchange, wire::take_apart(Sender::kPinPad, exchange.response).items);
}

void Ledger::read_amounts(const std::string& command, const std::vector<Item>& items) {
    for (const Item& item : items) {
        if (const auto amount = has(kAmountNames, item.name) ? amount_in(text_of(item)) : std::nullopt) {
            amounts_.push_back({command, *amount});
        }
        if (const auto cashback = has(kCashbackNames, item.name) ? amount_in(text_of(item)) : std::nullopt) {
            cashbacks_.push_back({command, *cashback});
        }
        for (const Item& part : item.parts) {
            if (part.id != kAmountTag) { continue; }
            if (const auto amount = amount_in(wire::to_hex(part.value))) { amounts_.push_back({command, *amount}); }
        }
    }
}

void Ledger::read_answer(const Exchange& exchange, const std::vector<Item>& items) {
    Step* const step = step_of(exchange.command);
    if (step == nullptr) { return; }
    for (const std::string_view name : {"PP_CARDTYPE", "GCR_CARDTYPE"}) {
        if (const Item* type = named(items, name)) { cardType_.assign(type->value.begin(), type->value.end()); }
    }
    for (const std::string_view name : {"PP_GOXRES", "GOC_DECISION"}) {
        if (const Item* result = named(items, name)) { step->decision = static_cast<char>(result->value.front()); }
    }
    for (const std::string_view name : {"PP_FCXRES", "FNC_DECISION"}) {
        if (const Item* result = named(items, name)) { step->decision = static_cast<char>(result->value.back()); }
    }
}

// Whoever is told to stop once all is decided still knows what was.
void Ledger::interrupted() {
    interrupted_ = true;
    early_ |= step_of(current_) != nullptr || !card_.asked;
}

bool Ledger::left_undecided() const {
    const bool chip = cardType_ == "03";
    return chip && go_.decision == '2' && go_.is_whole() && !finish_.asked && !struck_ && !interrupted_ && !cut_;
}

Outcomes Ledger::allowed(Host host) const {
    using enum Outcome;
    if (doubled_) { return {kReversal, kUnknown}; }
    if (finish_.asked) {
        const Outcomes right = at_the_end(host == Host::kApproves || host == Host::kLate);
        // A card that has approved was told something else than the acquirer's no, which stays one.
        return host == Host::kDeclines && right.has(kPaid) ? Outcomes{kNotPaid, kReversal, kUnknown} : right;
    }
    if (!go_.asked) {
        return cardType_.empty() || cardType_ == "03" ? Outcomes{kNotPaid} : settled(card_.delivery, host);
    }
    if (go_.decision) { return by_the_card(host); }
    return go_.is_whole() ? Outcomes{kNotPaid} : Outcomes{kNotPaid, kReversal, kUnknown};
}

// The card was told what the acquirer has said, or should have been.
Outcomes Ledger::at_the_end(bool authorised) const {
    using enum Outcome;
    const Outcomes unsure = authorised ? Outcomes{kReversal, kUnknown} : Outcomes{kNotPaid, kReversal, kUnknown};
    const bool approved = finish_.decision == '0';
    if (!finish_.decision || finish_.delivery == Delivery::kNever) { return unsure; }
    if (approved && finish_.is_whole()) { return early_ ? unsure.with({kPaid}) : Outcomes{kPaid}; }
    if (approved) { return unsure.with({kPaid}); }
    if (!finish_.is_whole() || early_) { return unsure; }
    return authorised ? Outcomes{kReversal} : Outcomes{kNotPaid, kReversal};
}

Outcomes Ledger::by_the_card(Host host) const {
    using enum Outcome;
    const Outcomes unsure{kNotPaid, kReversal, kUnknown};
    if (go_.decision == '1') { return go_.is_whole() ? Outcomes{kNotPaid} : unsure; }
    if (go_.decision == '2') { return cardType_ == "03" ? unsure : settled(go_.delivery, host); }
    if (go_.delivery == Delivery::kNever) { return unsure; }
    return go_.is_whole() && !early_ ? Outcomes{kPaid} : unsure.with({kPaid});
}

// Where the acquirer alone decides, once the till has what it asks it with.
Outcomes Ledger::settled(Delivery delivery, Host host) const {
    using enum Outcome;
    if (delivery == Delivery::kNever) {
        return go_.asked ? Outcomes{kNotPaid, kReversal, kUnknown} : Outcomes{kNotPaid};
    }
    if (host == Host::kDeclines || host == Host::kUnreachable) { return {kNotPaid, kReversal}; }
    if (host == Host::kLate) { return {kPaid, kReversal, kUnknown}; }
    if (delivery == Delivery::kMaybe || early_ || cut_) { return Outcomes::any(); }
    return pinAsked_ ? Outcomes{kPaid, kNotPaid} : Outcomes{kPaid};
}

std::string Ledger::words() const {
    if (doubled_) { return "the card has approved, and was then read for another sale"; }
    if (finish_.decision) {
        return fmt::format("in the end the card has {}, and {}", finish_.decision == '0' ? "approved" : "declined",
                           delivery_words(finish_.is_whole()));
    }
    if (finish_.asked) { return "the card was to be told what the acquirer has said, and has decided nothing"; }
    if (go_.decision) {
        const char* did = go_.decision == '0'   ? "approved by itself"
                          : go_.decision == '1' ? "declined by itself"
                                                : "asked for the acquirer";
        return fmt::format("the card has {}, and {}", did, delivery_words(go_.is_whole()));
    }
    if (go_.asked) { return "the card has decided nothing"; }
    if (cardType_.empty()) { return "no card was read"; }
    return fmt::format("a card was read, and {}", delivery_words(card_.is_whole()));
}

}  // namespace quorvel::sim::exam
