// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_CONTACTLESS_H
#define QUORVEL_SIMULATOR_COMMANDS_CONTACTLESS_H

#include "simulator/device/device.h"
#include "wire/status.h"

// What is peculiar to a card that is tapped.
namespace quorvel::sim::commands {

// OK, or why the transaction cannot be made by tapping this card: the tables allow it not at all or not for the amount,
// or its owner has to confirm it on the phone first. After the latter the same phone is taken.
[[nodiscard]] Status contactless_status(Device& device, const Card& card, const TableRecord& record,
                                        const DataObjects& objects);

// Below the table's limit nobody is verified.
[[nodiscard]] Verification contactless_verification(const Card& card, const TableRecord& record, uint64_t amount);

// What the terminal tells a card of this application of the transaction; nothing to those that do not ask.
[[nodiscard]] DataObjects contactless_objects(const Application& application, const TableRecord& record,
                                              uint64_t amount);

}  // namespace quorvel::sim::commands

#endif
