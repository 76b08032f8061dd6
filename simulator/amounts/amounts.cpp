// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/amounts/amounts.h"

#include <algorithm>
#include <array>
#include <utility>

#include "wire/fields.h"
#include "wire/param_id.h"

namespace quorvel::sim {

namespace {

using Way = Course::Way;
using Typing = Course::Typing;
using Step = Course::Step;

constexpr size_t kIdWidth = 3;
constexpr size_t kAmountDigits = 12;
constexpr std::string_view kRightPin = "1234";
constexpr std::string_view kWrongPin = "0000";

// What each command asks the cardholder for, or takes from him.
enum class Asks { kNothing, kCard, kPin, kRemoval, kKey, kDigits };

struct Row {
    std::string_view id;
    Asks asks = Asks::kNothing;
    Step step = Step::kNever;
    // Where a command of fields has the amount, if it has it: so many characters behind its id.
    size_t amountAt = 0;
    bool endsSession = false;
};

constexpr auto kRows = std::to_array<Row>({
    {.id = "GCR", .asks = Asks::kCard, .amountAt = 3 + 2 + 2},
    {.id = "GCX", .asks = Asks::kCard},
    {.id = "CKE", .asks = Asks::kCard},
    {.id = "GOC", .asks = Asks::kPin, .step = Step::kFirst, .amountAt = 3},
    {.id = "GOX", .asks = Asks::kPin, .step = Step::kFirst},
    {.id = "GPN", .asks = Asks::kPin},
    {.id = "FNC", .step = Step::kLast},
    {.id = "FCX", .step = Step::kLast},
    {.id = "RMC", .asks = Asks::kRemoval},
    {.id = "GKY", .asks = Asks::kKey},
    {.id = "MNU", .asks = Asks::kKey},
    {.id = "GCD", .asks = Asks::kDigits},
    {.id = "OPN", .endsSession = true},
    {.id = "CLO", .endsSession = true},
    {.id = "CLX", .endsSession = true},
});

Row row_of(std::string_view id) {
    const auto* found = std::ranges::find(kRows, id, &Row::id);
    return found != kRows.end() ? *found : Row{};
}

std::optional<uint64_t> amount_of(Reader request) {
    for (const Param& param : request.params()) {
        if (param.id == spe::kAmount) { return Reader("SPE_AMOUNT", param.data).n("digits", kAmountDigits); }
    }
    return std::nullopt;
}

// GPN asks for one PIN up to so many times; what nobody asks for any more is lost.
Gestures repeated() {
    static constexpr int kMostEntries = 9;
    Gestures gestures;
    for (int i = 0; i < kMostEntries; ++i) { gestures.type(kRightPin); }
    return gestures;
}

// None where there is none; a request that breaks its layout is told of elsewhere.
std::optional<uint64_t> amount_in(const Exchange& exchange) {
    const Row row = row_of(exchange.command);
    Reader request(exchange.command, ByteView(exchange.request).subspan(kIdWidth));
    try {
        if (row.amountAt == 0) { return amount_of(request); }
        if (request.left() == 0) { return std::nullopt; }
        static_cast<void>(request.b("head", row.amountAt));
        return request.n("amount", kAmountDigits);
    } catch (const LayoutError&) { return std::nullopt; }
}

}  // namespace

void Amounts::begin_anew() { again_ = false; }

void Amounts::begins(PinPad& pinPad, const Exchange& exchange) {
    const Row row = row_of(exchange.command);
    actsBefore_ = pinPad.acts();
    if (row.endsSession) { begin_anew(); }
    if (exchange.command.starts_with("GC") || row.step == Step::kFirst) { take_amount(exchange); }
    plan_trouble(pinPad, exchange.command);
}

void Amounts::take_amount(const Exchange& exchange) {
    const auto amount = amount_in(exchange);
    if (!amount || *amount == amount_) { return; }
    amount_ = *amount;
    course_ = &course_of(amount_);
    begin_anew();
}

// One that did not strike as often as it could is not for the next payment.
void Amounts::plan_trouble(PinPad& pinPad, const std::string& command) {
    const Step step = row_of(command).step;
    if (step == Step::kNever) { return; }
    for (const Course& each : kCourses) {
        if (each.trouble.step == step) {
            pinPad.withdraw({.kind = std::string(each.trouble.fault), .command = command});
        }
    }
    const Course::Trouble& trouble = course_->trouble;
    if (trouble.step != step) { return; }
    pinPad.inject({.kind = std::string(trouble.fault),
                   .command = command,
                   .time = std::chrono::milliseconds(trouble.milliseconds),
                   .times = trouble.times});
}

void Amounts::waits(PinPad&, const std::string& command) {
    waiting_ = command;
    due_ = Clock::now() + hesitation_;
}

void Amounts::exchanged(PinPad& pinPad, const Exchange& exchange) {
    due_.reset();
    if (!exchange.status) { return; }
    const Row row = row_of(exchange.command);
    if (exchange.command == "GCR" || exchange.command == "GCX") { come_to_card(pinPad, *exchange.status); }
    if (row.step == Step::kFirst && *exchange.status == 0 && course_->leaves) { pinPad.act(Gestures().remove()); }
}

// A card that was not taken is taken back, and the next one comes when the till asks again.
void Amounts::come_to_card(PinPad& pinPad, int status) {
    static constexpr int kFirstOfCards = static_cast<int>(Status::kDumbcard);
    if (status == 0) { return begin_anew(); }
    if (status < kFirstOfCards) { return; }
    if (presented().way == Way::kInsert) { pinPad.act(Gestures().remove()); }
    again_ = true;
}

void Amounts::work(PinPad& pinPad, Clock::time_point now) {
    if (!due_ || now < *due_) { return; }
    due_.reset();
    if (pinPad.acts() == actsBefore_) { pinPad.act(gestures()); }
}

const Course::Presented& Amounts::presented() const { return again_ ? course_->again() : course_->cards.front(); }

Gestures Amounts::present() const {
    const auto& [way, name] = presented();
    if (way == Way::kNone) { return {}; }
    Card card = Cards::standard().at(name);
    // A phone that is tapped again is one whose owner has been asked.
    card.fresh = !again_ || way != Way::kTap;
    switch (way) {
        case Way::kTap:
            return Gestures().tap(std::move(card));
        case Way::kSwipe:
            return Gestures().swipe(std::move(card));
        default:
            return Gestures().insert(std::move(card));
    }
}

Gestures Amounts::type() const {
    switch (course_->typing) {
        case Typing::kWrongOnce:
            return Gestures().type(kWrongPin).type(kRightPin);
        case Typing::kWrong:
            return Gestures().type(kWrongPin).type(kWrongPin).type(kWrongPin);
        case Typing::kCancels:
            return Gestures().press(Key::kCancel);
        case Typing::kBypasses:
            return Gestures().press(Key::kEnter);
        case Typing::kRemoves:
            return Gestures().press(digit(kRightPin.front())).remove();
        case Typing::kNothing:
            return {};
        case Typing::kRight:
            break;
    }
    return Gestures().type(kRightPin);
}

Gestures Amounts::gestures() const {
    static constexpr size_t kLastDigits = 4;
    switch (row_of(waiting_).asks) {
        case Asks::kCard:
            return present();
        case Asks::kPin:
            return waiting_ == "GPN" ? repeated() : type();
        case Asks::kRemoval:
            return Gestures().remove();
        case Asks::kKey:
            return Gestures().press(Key::kEnter);
        case Asks::kDigits: {
            const auto& [way, name] = presented();
            const std::string pan = way == Way::kNone ? "" : Cards::standard().at(name).pan;
            return Gestures().type(std::string_view(pan).substr(pan.size() - std::min(pan.size(), kLastDigits)));
        }
        case Asks::kNothing:
            break;
    }
    return {};
}

}  // namespace quorvel::sim
