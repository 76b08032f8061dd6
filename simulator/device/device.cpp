// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/device/device.h"

#include <fmt/format.h>
#include <openssl/crypto.h>
#include <utility>

#include "simulator/cards/emv.h"

namespace quorvel::sim {

AcquirerInfo Device::acquirer(int index) const {
    const auto found = acquirers.find(index);
    if (found != acquirers.end()) { return found->second; }
    return {.texts = {fmt::format("ACQUIRER {:02}", index), "001.00 260101", "0001", "A00"}, .number = 0};
}

void Device::drop_pan_key() {
    if (panKey) { OPENSSL_cleanse(panKey->data(), panKey->size()); }
    panKey.reset();
}

CardCounters& Device::count(const Card& card, const DataObjects& objects) {
    const auto told = [&](Tag tag) { return static_cast<uint16_t>(number(value_of(objects, tag))); };
    const CardCounters first{.all = told(tag::kCounter), .online = told(card_tag::kLastOnlineCounter)};
    CardCounters& counters = cardCounters.try_emplace(card.pan, first).first->second;
    ++counters.all;
    return counters;
}

void Device::insert(Card card) {
    remove_card();
    if (card.chip) { firstTries = card.chip->pinTries; }
    const auto left = pinTries.find(card.pan);
    if (card.chip && !card.fresh && left != pinTries.end()) { card.chip->pinTries = left->second; }
    chip = std::move(card);
}

void Device::remove_card() {
    if (chip && chip->chip) { pinTries[chip->pan] = chip->chip->pinTries; }
    if (transaction && transaction->interface == Transaction::Interface::kChip) { transaction->interrupted = true; }
    chip.reset();
    owesCard = false;
}

void Device::put_back(Part part, const Device& first) {
    switch (part) {
        case Part::kCards:
            chip = first.chip;
            lastCard = first.lastCard;
            transaction = first.transaction;
            cardCounters = first.cardCounters;
            confirming = first.confirming;
            owesCard = first.owesCard;
            cardRequest = first.cardRequest;
            lastChipReading = first.lastChipReading;
            firstTries = first.firstTries;
            modules = first.modules;
            return put_back(Part::kPins, first);
        case Part::kTables:
            tables = first.tables;
            cardRequest = first.cardRequest;
            return;
        case Part::kKeys:
            drop_pan_key();
            panKey = first.panKey;
            keys = first.keys;
            return;
        case Part::kPins:
            pinTries = first.pinTries;
            if (chip && chip->chip) { chip->chip->pinTries = firstTries ? *firstTries : first.chip->chip->pinTries; }
            for (auto& [slot, module] : modules) { module.pinTries = first.modules.at(slot).pinTries; }
            return;
        case Part::kMedia:
            media = first.media;
    }
}

Device Device::standard() {
    Device device;
    device.keys = KeyStore::standard();
    return device;
}

}  // namespace quorvel::sim
