// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/device/device.h"

#include <fmt/format.h>
#include <openssl/crypto.h>
#include <utility>

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

void Device::insert(Card card) {
    remove_card();
    const auto left = pinTries.find(card.pan);
    if (card.chip && left != pinTries.end()) { card.chip->pinTries = left->second; }
    chip = std::move(card);
}

void Device::remove_card() {
    if (chip && chip->chip) { pinTries[chip->pan] = chip->chip->pinTries; }
    if (transaction && transaction->interface == Transaction::Interface::kChip) { transaction->interrupted = true; }
    chip.reset();
    owesCard = false;
}

Device Device::standard() {
    Device device;
    device.keys = KeyStore::standard();
    return device;
}

}  // namespace quorvel::sim
