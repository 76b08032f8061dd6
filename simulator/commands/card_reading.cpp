// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/card_reading.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "simulator/cardholder/menu.h"
#include "simulator/cards/emv.h"
#include "simulator/commands/dialog.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kCounterSize = 2;

// After these the stripe may stand in for the chip.
constexpr std::array kAllowFallback{Status::kDumbcard, Status::kErrcard, Status::kErrfallback};

// The answers to a card without the application that was asked for.
struct Absence {
    Status notThere;
    Status noTable = Status::kTaberr;
};
constexpr Absence kChipAbsence{Status::kCardappnav};
constexpr Absence kContactlessAbsence{Status::kCtlsappnav};

class CardReading : public Dialog<CardRequest, CardAnswer> {
public:
    using Dialog::Dialog;

    // Before the wait: what the chip in the reader comes to at once.
    std::optional<Answer> begin() {
        if (device_.chip) { return insert(); }
        ask(request_.contactless ? Text::kAskForCard : Text::kAskForCardWithoutTap);
        return std::nullopt;
    }

    // What the host is told as the wait begins; afterwards it is told at once.
    std::string wait() {
        waiting_ = true;
        return std::exchange(notice_, {});
    }

    std::optional<Answer> on(const Event& event) {
        if (menu_) { return choose(event); }
        if (const auto* pressed = std::get_if<KeyPressed>(&event); pressed != nullptr && pressed->key == Key::kCancel) {
            return Answer{.status = Status::kCancel};
        }
        if (const auto* swiped = std::get_if<CardSwiped>(&event)) { return swipe(swiped->card); }
        if (std::holds_alternative<CardInserted>(event)) { return insert(); }
        if (const auto* tapped = std::get_if<CardTapped>(&event)) { return tap(tapped->card); }
        return std::nullopt;
    }

private:
    // The host's message says all that there is to say.
    void ask(Text own) {
        const std::string& message = request_.message;
        screen_.show({.text = message.empty() ? amount_line(request_.objects) + device_.text(own) : message});
    }

    void tell(std::string text) {
        if (waiting_) { return notify_(text); }
        notice_ = std::move(text);
    }

    std::optional<Answer> swipe(const Card& card) {
        if (!card.has_stripe()) { return Answer{.status = Status::kMcdataerr}; }
        const ChipReading last = std::exchange(device_.lastChipReading, ChipReading::kGood);
        if (card.prefers_chip() && last == ChipReading::kGood) {
            screen_.show({.text = device_.text(Text::kInsertChip)});
            tell("INSERT THE CHIP");
            return std::nullopt;
        }
        device_.lastCard = card;
        return showing(answer_({.type = CardType::kStripe, .lastChip = last, .card = card}), Text::kProcessing);
    }

    std::optional<Answer> insert() {
        const Card& card = *device_.chip;
        device_.owesCard = true;
        const Status fault = card.chip ? card.chip->fault : Status::kDumbcard;
        if (fault != Status::kOk) { return chip_failed(fault); }
        const auto found = applications(card, kChipAbsence);
        if (const auto* status = std::get_if<Status>(&found)) { return chip_failed(*status); }
        candidates_ = std::get<std::vector<Application>>(found);
        if (candidates_.size() == 1) { return take_chip(candidates_.front()); }
        std::vector<std::string> labels;
        for (const Application& each : candidates_) { labels.push_back(each.label); }
        menu_.emplace(screen_, device_.text(Text::kChoose), std::move(labels));
        tell("CHOOSE THE APPLICATION");
        return std::nullopt;
    }

    Answer chip_failed(Status status) {
        if (std::ranges::find(kAllowFallback, status) != kAllowFallback.end()) {
            device_.lastChipReading = ChipReading::kFailed;
        } else if (status == Status::kCardappnav) {
            device_.lastChipReading = ChipReading::kNotSupported;
        }
        return {.status = status};
    }

    std::optional<Answer> choose(const Event& event) {
        const bool left = std::holds_alternative<CardRemoved>(event) || std::holds_alternative<CardInserted>(event);
        if (left) { return Answer{.status = Status::kNocard}; }
        const auto result = menu_->on(event);
        if (!result) { return std::nullopt; }
        if (result->status != Status::kOk) { return Answer{.status = result->status}; }
        return take_chip(candidates_[result->option - 1]);
    }

    Answer take_chip(const Application& application) {
        device_.chip->chip->powered = true;
        device_.lastChipReading = ChipReading::kGood;
        return take(CardType::kChip, Transaction::Interface::kChip, *device_.chip, application);
    }

    // Nobody can be asked while the card is held to the reader: the one that the card prefers is taken.
    std::optional<Answer> tap(const Card& card) {
        if (!request_.contactless || !card.contactless) { return std::nullopt; }
        if (card.contactless->fault != Status::kOk) { return Answer{.status = card.contactless->fault}; }
        const auto found = applications(card, kContactlessAbsence);
        if (const auto* status = std::get_if<Status>(&found)) { return Answer{.status = *status}; }
        const CardType type = card.contactless->stripeData ? CardType::kContactlessStripe : CardType::kContactless;
        return take(type, Transaction::Interface::kContactless, card,
                    std::get<std::vector<Application>>(found).front());
    }

    // Those that the host accepts and the tables know.
    [[nodiscard]] std::variant<Status, std::vector<Application>> applications(const Card& card, Absence absence) const {
        std::vector<Application> found;
        std::ranges::copy_if(card.applications, std::back_inserter(found),
                             [&](const Application& each) { return request_.accepts(each); });
        if (found.empty()) { return absence.notThere; }
        std::erase_if(found, [&](const Application& each) {
            return !device_.tables.has_record(static_cast<int>(each.acquirer), each.record);
        });
        if (found.empty()) { return absence.noTable; }
        return found;
    }

    Answer take(CardType type, Transaction::Interface interface, const Card& card, const Application& application) {
        DataObjects objects = request_.objects;
        objects[tag::kAid] = objects[tag::kFileName] = application.aid;
        objects[tag::kLabel] = to_bytes(application.label);
        objects[tag::kCounter] = bcd(++device_.transactions, kCounterSize);
        objects.merge(DataObjects(application.objects));
        objects.merge(card.objects());
        objects.merge(terminal_objects());
        device_.lastCard = card;
        device_.transaction = Transaction{.interface = interface,
                                          .card = card,
                                          .application = application,
                                          .objects = objects,
                                          .told = request_.objects};
        return showing(answer_({.type = type, .card = card, .application = application, .objects = std::move(objects)}),
                       Text::kProcessing);
    }

    std::vector<Application> candidates_;
    std::optional<Menu> menu_;
    bool waiting_ = false;
    std::string notice_;
};

}  // namespace

Outcome read_card(Call& call, CardRequest request, std::optional<std::chrono::seconds> limit, CardAnswer answer) {
    call.device.transaction.reset();
    return hold<CardReading>(limit, call, std::move(request), std::move(answer));
}

}  // namespace quorvel::sim::commands
