// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <string>
#include <utility>
#include <variant>

#include "simulator/cards/pan_mask.h"
#include "simulator/commands/handlers.h"
#include "simulator/commands/params.h"
#include "simulator/keys/pan_cipher.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

enum class Chip { kIgnored, kRemoval, kInsertion };

// What ends the wait.
struct Awaited {
    bool keys = false;
    bool stripe = false;
    Chip chip = Chip::kIgnored;
    bool contactless = false;

    [[nodiscard]] bool operator()(const KeyPressed& pressed) const { return keys && !is_digit(pressed.key); }
    [[nodiscard]] bool operator()(const CardSwiped&) const { return stripe; }
    [[nodiscard]] bool operator()(const CardInserted&) const { return chip == Chip::kInsertion; }
    [[nodiscard]] bool operator()(const CardRemoved&) const { return chip == Chip::kRemoval; }
    [[nodiscard]] bool operator()(const CardTapped&) const { return contactless; }
    [[nodiscard]] bool operator()(const Notice&) const { return false; }
};

// The chip reader's state counts, not only its change.
std::optional<Event> already(const Device& device, const Awaited& awaited) {
    if (awaited.chip == Chip::kInsertion && device.chip) { return CardInserted{*device.chip}; }
    if (awaited.chip == Chip::kRemoval && !device.chip) { return CardRemoved{}; }
    return std::nullopt;
}

// `answer` makes the answer for an event that is awaited.
template <typename MakeAnswer>
Outcome await(Device& device, const Awaited& awaited, std::optional<std::chrono::seconds> limit, MakeAnswer answer) {
    if (awaited.chip == Chip::kRemoval) { device.owesCard = false; }
    if (const auto event = already(device, awaited)) { return std::visit(answer, *event); }
    return Wait{[&device, awaited, answer](const Event& event) -> std::optional<Answer> {
                    if (!std::visit(awaited, event)) { return std::nullopt; }
                    if (const auto* swiped = std::get_if<CardSwiped>(&event)) { device.lastCard = swiped->card; }
                    return std::visit(answer, event);
                },
                limit};
}

// Two digits; the key's code for a key.
constexpr unsigned kStripeEvent = 90;
constexpr unsigned kRemovalEvent = 91;
constexpr unsigned kInsertionEvent = 92;
constexpr unsigned kTapEvent = 94;

struct CexAnswer {
    PanMask mask;

    Answer operator()(const KeyPressed& pressed) const { return event(static_cast<unsigned>(pressed.key)); }
    Answer operator()(const CardInserted&) const { return event(kInsertionEvent); }
    Answer operator()(const CardRemoved&) const { return event(kRemovalEvent); }
    Answer operator()(const CardTapped&) const { return event(kTapEvent); }
    Answer operator()(const Notice&) const { return {}; }

    Answer operator()(const CardSwiped& swiped) const {
        const Card& card = swiped.card;
        std::vector<Param> params;
        for (const auto& [id, track] : {std::pair(pp::kTrk1Inc, &card.track1), std::pair(pp::kTrk2Inc, &card.track2),
                                        std::pair(pp::kTrk3Inc, &card.track3)}) {
            if (!track->empty()) { params.push_back({id, to_bytes(masked(*track, card.pan.size(), mask))}); }
        }
        return event(kStripeEvent, std::move(params));
    }

private:
    static Answer event(unsigned code, std::vector<Param> more = {}) {
        more.insert(more.begin(), {pp::kEvent, Writer().n(code, 2).bytes()});
        return Answer::of(more);
    }
};

// Digits for keys, stripe, chip and contactless, and two that stand for nothing yet.
Awaited cex_options(Reader& options) {
    Awaited awaited;
    awaited.keys = options.n("keys", 1, {0, 1}) == 1;
    awaited.stripe = options.n("stripe", 1, {0, 1}) == 1;
    awaited.chip = static_cast<Chip>(options.n("chip", 1, {0, 2}));
    awaited.contactless = options.n("contactless", 1, {0, 1}) == 1;
    options.n("reserved", 2, {0, 0});
    return awaited;
}

constexpr unsigned kCkeKey = 0;
constexpr unsigned kCkeStripe = 1;
constexpr unsigned kCkeChip = 2;
constexpr unsigned kCkeContactless = 3;

struct CkeAnswer {
    const Device* device;

    Answer operator()(const KeyPressed& pressed) const {
        return Answer::of(Writer().n(kCkeKey, 1).n(static_cast<unsigned>(pressed.key), 2));
    }
    Answer operator()(const CardInserted&) const { return Answer::of(Writer().n(kCkeChip, 1).n(1, 1)); }
    Answer operator()(const CardRemoved&) const { return Answer::of(Writer().n(kCkeChip, 1).n(0, 1)); }
    Answer operator()(const CardTapped&) const { return Answer::of(Writer().n(kCkeContactless, 1).n(1, 1)); }
    Answer operator()(const Notice&) const { return {}; }

    // Enciphered tracks take more room, and the length of track 3 makes way for it.
    Answer operator()(const CardSwiped& swiped) const {
        const std::optional<Bytes>& key = device->panKey;
        const auto track = [&](const std::string& text) { return key ? protect_pan(text, *key) : text; };
        const std::string track1 = track(swiped.card.track1);
        const std::string track2 = track(swiped.card.track2);
        const std::string track3 = track(swiped.card.track3);
        Writer fields;
        fields.n(kCkeStripe, 1).n(track1.size(), 2).a(track1, 76).n(track2.size(), 2).a(track2, key ? 40 : 37);
        if (!key) { fields.n(track3.size(), 3); }
        return Answer::of(fields.a(track3, 104));
    }
};

}  // namespace

Outcome cex(Call& call) {
    const Params params("CEX", call.request, {spe::kCexOpt}, {spe::kTimeout, spe::kPanMask});
    const Awaited awaited = params.get(spe::kCexOpt, cex_options);
    const PanMask mask = params.pan_mask().value_or(PanMask{});
    return await(call.device, awaited, params.timeout(), CexAnswer{mask});
}

Outcome cke(Call& call) {
    Reader fields = only_block(call);
    Awaited awaited;
    awaited.keys = fields.n("CKE_KEY", 1, {0, 1}) == 1;
    awaited.stripe = fields.n("CKE_MAG", 1, {0, 1}) == 1;
    awaited.chip = static_cast<Chip>(fields.n("CKE_ICC", 1, {0, 2}));
    if (fields.left() != 0) { awaited.contactless = fields.n("CKE_CTLS", 1, {0, 1}) == 1; }
    fields.end();
    return await(call.device, awaited, std::nullopt, CkeAnswer{&call.device});
}

}  // namespace quorvel::sim::commands
