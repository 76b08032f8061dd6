// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/go_on_chip.h"

#include <fmt/format.h>
#include <iterator>
#include <utility>
#include <vector>

#include "simulator/cardholder/digit_entry.h"
#include "simulator/cards/emv.h"
#include "simulator/cards/restrictions.h"
#include "simulator/cards/verification_list.h"
#include "simulator/commands/contactless.h"
#include "simulator/commands/dialog.h"
#include "simulator/commands/handlers.h"
#include "simulator/commands/table_check.h"
#include "wire/hex.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kFewestPinDigits = 4;
constexpr uint8_t kNoRule = 0x3F;

Cryptogram cryptogram(Decision decision) {
    switch (decision) {
        case Decision::kApproved:
            return Cryptogram::kApproved;
        case Decision::kOnline:
            return Cryptogram::kOnline;
        case Decision::kDeclined:
            break;
    }
    return Cryptogram::kDeclined;
}

class GoOnChip : public Dialog<GoRequest, GoAnswer> {
public:
    GoOnChip(Call& call, GoRequest request, GoAnswer answer) : Dialog(call, std::move(request), std::move(answer)) {
        record_ = device_.record(transaction().application);
        check_currency(transaction().application, record_, request_.objects, journal_);
        for (auto& [tag, value] : request_.objects) { transaction().objects.insert_or_assign(tag, std::move(value)); }
        context_ = VerificationContext::of(transaction().objects);
        list_ = verification_list(rules());
        rule_ = list_.rules.begin();
    }

    // Unless a PIN has to be waited for.
    std::optional<Answer> begin() { return verify(); }

    static std::string wait() { return "ENTER THE PIN"; }

    std::optional<Answer> on(const Event& event) {
        if (transaction().interrupted) { return Answer{.status = Status::kNocard}; }
        if (is_enter(event) && entry_->is_empty()) { return bypass(); }
        const auto typed = entry_->on(event);
        if (!typed) { return std::nullopt; }
        if (typed->status != Status::kOk) { return Answer{.status = typed->status}; }
        return rule_->method() == Method::kOnlinePin ? take_online(typed->digits) : verify_offline(typed->digits);
    }

private:
    using Method = VerificationRule::Method;
    // As the results of the verification tell it.
    enum class Ending : uint8_t { kLeftOpen = 0, kFailed = 1, kSucceeded = 2 };

    [[nodiscard]] Transaction& transaction() const { return *device_.transaction; }
    [[nodiscard]] bool is_chip() const { return transaction().interface == Transaction::Interface::kChip; }
    [[nodiscard]] Chip& chip() const { return *device_.chip->chip; }
    static bool is_enter(const Event& event) {
        const auto* pressed = std::get_if<KeyPressed>(&event);
        return pressed != nullptr && pressed->key == Key::kEnter;
    }

    // A tapped card has no rules, only a way.
    [[nodiscard]] Bytes rules() const {
        if (!is_chip()) { return verification_object(by_antenna()); }
        return value_of(transaction().objects, card_tag::kVerificationList, verification_object(chip().verification));
    }
    [[nodiscard]] Verification by_antenna() const {
        return contactless_verification(transaction().card, record_, context_.amount);
    }

    // Goes through the rules until one is fulfilled, or waits for a PIN.
    std::optional<Answer> verify() {
        if (list_.rules.empty()) { return decide(Ending::kLeftOpen); }
        for (; rule_ != list_.rules.end(); ++rule_) {
            if (!is_meant(*rule_, list_, context_)) { continue; }
            tried_ = *rule_;
            if (const auto ending = attempt()) {
                if (*ending != Ending::kFailed) { return decide(*ending); }
                if (!rule_->leads_on()) { break; }
            } else {
                ask();
                return std::nullopt;
            }
        }
        verified_.failed = true;
        return decide(tried_.code == kNoRule ? Ending::kLeftOpen : Ending::kFailed);
    }

    // None for one that needs a PIN. Who has declined to type one is not asked again.
    std::optional<Ending> attempt() {
        const Method method = rule_->method();
        if (method == Method::kUnknown) { verified_.unknownMethod = true; }
        if (method == Method::kFails || !is_supported(*rule_, context_)) { return Ending::kFailed; }
        if (method == Method::kNone) { return Ending::kSucceeded; }
        if (method == Method::kSignature) {
            verified_.signature = true;
            return Ending::kLeftOpen;
        }
        if (verified_.pinBypassed) { return Ending::kFailed; }
        if (method == Method::kOnlinePin) { return std::nullopt; }
        if (!is_chip()) { return Ending::kFailed; }
        verified_.pinBlocked = chip().pinTries == 0;
        return verified_.pinBlocked ? std::optional(Ending::kFailed) : std::nullopt;
    }

    // What the host has to say stands in place of the amount and of what the PIN pad asks for itself.
    void ask(std::optional<Text> wrong = {}) {
        const std::string& message = request_.message;
        std::string text = message.empty() ? amount_line(transaction().objects) : "";
        if (wrong) { text += device_.text(Text::kWrongPin) + "\r"; }
        text += message.empty() ? device_.text(wrong.value_or(Text::kEnterPin)) : message;
        entry_.emplace(screen_, text, kFewestPinDigits, kMaxPinDigits, DigitEntry::Echo::kCount);
    }

    // The rule is not fulfilled: the next one has its turn, if this one leads on.
    std::optional<Answer> give_up() {
        rule_ = rule_->leads_on() ? std::next(rule_) : list_.rules.end();
        return verify();
    }

    // Enter, and nothing typed.
    std::optional<Answer> bypass() {
        verified_.pinBypassed = true;
        return give_up();
    }

    Answer take_online(const std::string& pin) {
        pin_ = encipher_pin(device_.keys, request_.key, transaction().card.pan, pin);
        if (!pin_) { return {.status = Status::kErrkey}; }
        verified_.pinOnline = true;
        return decide(Ending::kLeftOpen);
    }

    // The chip counts down, and has forgotten the errors after the right one.
    std::optional<Answer> verify_offline(const std::string& pin) {
        if (chip().accepts_pin(pin)) {
            verified_.pinOffline = true;
            verified_.signature = rule_->method() == Method::kOfflinePinAndSignature;
            return decide(Ending::kSucceeded);
        }
        ++verified_.pinErrors;
        verified_.pinBlocked = chip().pinTries == 0;
        if (verified_.pinBlocked) { return give_up(); }
        const bool last = chip().pinTries == 1;
        notify_(last ? "WRONG PIN, LAST TRY" : "WRONG PIN");
        ask(last ? Text::kLastTry : Text::kEnterPin);
        return std::nullopt;
    }

    // Which rule it was that decided, and how it ended. A device's owner shows in a way of its own.
    [[nodiscard]] Bytes verification_results(Ending ending) const {
        if (!is_chip() && by_antenna() == Verification::kDevice) { return from_hex("010002"); }
        return {tried_.code, tried_.condition, static_cast<uint8_t>(ending)};
    }

    // What the host does not say of limits, the table does.
    [[nodiscard]] Risk risk() const {
        Risk risk = request_.risk;
        const auto limit = record_.limit(is_chip() ? RecordField::kFloorLimit : RecordField::kContactlessFloor);
        if (!risk.byTable || !limit) { return risk; }
        risk.managed = true;
        risk.floorLimit = *limit;
        return risk;
    }

    void find_out() {
        DataObjects& objects = transaction().objects;
        mark_restrictions(objects);
        const CardCounters& counters = device_.cardCounters[transaction().card.pan];
        if (is_chip()) { mark_velocity(counters.all, counters.online, objects); }
        const bool onlineOnly = record_.text(RecordField::kContactlessZero) == std::optional<std::string>("1");
        if (!is_chip() && onlineOnly && context_.amount == 0) { set(objects, terminal_result::kMustGoOnline); }
    }

    Answer decide(Ending ending) {
        DataObjects& objects = transaction().objects;
        objects[tag::kVerificationResults] = verification_results(ending);
        find_out();
        const Chip::First wish = is_chip() ? chip().first : Chip::First::kAsAsked;
        const ActionCodes codes = ActionCodes::of_card(objects).with(record_.action_codes(!is_chip()));
        const Decision decision = first_decision(risk(), verified_, wish, device_.random.percentage(), objects, codes);
        if (decision != Decision::kOnline) {
            objects[tag::kResponseCode] = to_bytes(decision == Decision::kApproved ? "Y1" : "Z1");
        }
        generate(objects, cryptogram(decision), device_.random);
        transaction().stage =
            decision == Decision::kOnline ? Transaction::Stage::kOnline : Transaction::Stage::kFinished;
        return showing(answer_({.decision = decision, .verified = verified_, .pin = pin_, .objects = objects}),
                       outcome(decision));
    }

    [[nodiscard]] Text outcome(Decision decision) const {
        if (decision == Decision::kOnline) { return Text::kProcessing; }
        if (decision == Decision::kApproved) { return Text::kApproved; }
        return verified_.pinBlocked ? Text::kPinBlocked : Text::kDeclined;
    }

    TableRecord record_;
    VerificationContext context_;
    VerificationList list_;
    std::vector<VerificationRule>::const_iterator rule_;
    // The last that was meant; as it is when none was.
    VerificationRule tried_{.code = kNoRule};
    std::optional<DigitEntry> entry_;
    Verified verified_;
    std::optional<PinBlock> pin_;
};

}  // namespace

std::optional<Answer> unfit_transaction(Call& call, Transaction::Stage stage, std::string_view command) {
    const auto& transaction = call.device.transaction;
    if (!transaction) { return out_of_sequence(call, fmt::format("{} without a chip that was read", command)); }
    if (transaction->stage != stage) {
        return out_of_sequence(call, fmt::format("{} at the wrong stage of the transaction", command));
    }
    if (transaction->interrupted) { return Answer{.status = Status::kNocard}; }
    return std::nullopt;
}

Outcome go_on_chip(Call& call, GoRequest request, std::optional<std::chrono::seconds> limit, GoAnswer answer) {
    return hold<GoOnChip>(limit, call, std::move(request), std::move(answer));
}

}  // namespace quorvel::sim::commands
