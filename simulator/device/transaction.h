// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_DEVICE_TRANSACTION_H
#define QUORVEL_SIMULATOR_DEVICE_TRANSACTION_H

#include <set>
#include <string>
#include <utility>

#include "simulator/cards/card.h"
#include "wire/tlv.h"

namespace quorvel::sim {

// What the host asks for when it wants a card.
struct CardRequest {
    // 0 stands for every acquirer.
    unsigned acquirer = 0;
    // Application types and table records, by acquirer and index; an empty set lets all pass.
    std::set<unsigned> types = {};
    std::set<std::pair<unsigned, std::string>> records = {};
    bool contactless = true;
    // Empty for the PIN pad's own.
    std::string message = {};
    // What the host tells of the transaction.
    DataObjects objects = {};

    [[nodiscard]] bool accepts(const Application& application) const {
        return (acquirer == 0 || acquirer == application.acquirer)
               && (types.empty() || types.contains(application.type))
               && (records.empty() || records.contains({application.acquirer, application.record}));
    }
};

// What the last chip that was read came to. After the others a stripe does that tells to use the chip.
enum class ChipReading { kGood = 0, kFailed = 1, kNotSupported = 2 };

// Begins with a card whose chip or antenna was read. The next one takes its place.
struct Transaction {
    enum class Interface { kChip, kContactless };
    enum class Stage {
        kSelected,  // an application, and nothing decided
        kOnline,    // the issuer is asked
        kFinished,
    };

    Interface interface = Interface::kChip;
    Card card;
    Application application;
    DataObjects objects;
    // What the host has told of the money so far.
    DataObjects told = {};
    Stage stage = Stage::kSelected;
    // The chip has left the reader, even if it came back.
    bool interrupted = false;
};

}  // namespace quorvel::sim

#endif
