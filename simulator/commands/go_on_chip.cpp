// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/go_on_chip.h"

#include <fmt/format.h>
#include <openssl/rand.h>
#include <utility>

#include "simulator/cardholder/digit_entry.h"
#include "simulator/cards/emv.h"
#include "simulator/commands/dialog.h"
#include "simulator/commands/handlers.h"
#include "wire/hex.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kFewestPinDigits = 4;

// From 1 to 99, as the random selection draws it.
unsigned draw() {
    uint8_t byte = 0;
    RAND_bytes(&byte, sizeof byte);
    return byte % 99U + 1;
}

// Which method, under which condition, and how it ended.
Bytes verification_results(const Verified& verified) {
    if (verified.pinOnline) { return from_hex("420300"); }
    if (verified.pinOffline) { return from_hex("410302"); }
    if (verified.failed) { return from_hex("410301"); }
    return from_hex(verified.signature ? "1E0300" : "1F0302");
}

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
        for (auto& [tag, value] : request_.objects) { transaction().objects.insert_or_assign(tag, std::move(value)); }
    }

    // Unless a PIN has to be waited for.
    std::optional<Answer> begin() {
        switch (verification()) {
            case Verification::kNone:
                return decide();
            case Verification::kSignature:
                verified_.signature = true;
                return decide();
            case Verification::kOfflinePin:
                if (chip().pinTries == 0) { return pin_blocked(); }
                break;
            case Verification::kOnlinePin:
                break;
        }
        ask();
        return std::nullopt;
    }

    static std::string wait() { return "ENTER THE PIN"; }

    std::optional<Answer> on(const Event& event) {
        if (transaction().interrupted) { return Answer{.status = Status::kNocard}; }
        const auto typed = entry_->on(event);
        if (!typed) { return std::nullopt; }
        if (typed->status != Status::kOk) { return Answer{.status = typed->status}; }
        return verification() == Verification::kOnlinePin ? take_online(typed->digits) : verify_offline(typed->digits);
    }

private:
    [[nodiscard]] Transaction& transaction() const { return *device_.transaction; }
    [[nodiscard]] bool is_chip() const { return transaction().interface == Transaction::Interface::kChip; }
    [[nodiscard]] Chip& chip() const { return *device_.chip->chip; }

    [[nodiscard]] Verification verification() const {
        return is_chip() ? chip().verification : transaction().card.contactless->verification;
    }

    // What the host has to say stands in place of the amount and of what the PIN pad asks for itself.
    void ask(std::optional<Text> wrong = {}) {
        const std::string& message = request_.message;
        std::string text = message.empty() ? amount_line(transaction().objects) : "";
        if (wrong) { text += device_.text(Text::kWrongPin) + "\r"; }
        text += message.empty() ? device_.text(wrong.value_or(Text::kEnterPin)) : message;
        entry_.emplace(screen_, text, kFewestPinDigits, kMaxPinDigits, DigitEntry::Echo::kCount);
    }

    Answer take_online(const std::string& pin) {
        pin_ = encipher_pin(device_.keys, request_.key, transaction().card.pan, pin);
        if (!pin_) { return {.status = Status::kErrkey}; }
        verified_.pinOnline = true;
        return decide();
    }

    // The chip counts down, and has forgotten the errors after the right one.
    std::optional<Answer> verify_offline(const std::string& pin) {
        if (chip().accepts_pin(pin)) {
            verified_.pinOffline = true;
            return decide();
        }
        ++verified_.pinErrors;
        if (chip().pinTries == 0) { return pin_blocked(); }
        const bool last = chip().pinTries == 1;
        notify_(last ? "WRONG PIN, LAST TRY" : "WRONG PIN");
        ask(last ? Text::kLastTry : Text::kEnterPin);
        return std::nullopt;
    }

    Answer pin_blocked() {
        verified_.pinBlocked = verified_.failed = true;
        return decide();
    }

    Answer decide() {
        DataObjects& objects = transaction().objects;
        objects[tag::kVerificationResults] = verification_results(verified_);
        const Chip::First wish = is_chip() ? chip().first : Chip::First::kAsAsked;
        const Decision decision = first_decision(request_.risk, verified_, wish, draw(), objects);
        if (decision != Decision::kOnline) {
            objects[tag::kResponseCode] = to_bytes(decision == Decision::kApproved ? "Y1" : "Z1");
        }
        generate(objects, cryptogram(decision));
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
