// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDS_RESTRICTIONS_H
#define QUORVEL_SIMULATOR_CARDS_RESTRICTIONS_H

#include <cstdint>

#include "simulator/wire.h"
#include "wire/tlv.h"

// What the terminal finds out about a card before it decides. Each marks its grounds in the terminal verification
// results, and whatever the card does not have is not looked at.
namespace quorvel::sim {

// Expiry and effective date against the transaction's, and the use that the card may be put to.
void mark_restrictions(DataObjects& objects);

// How many transactions in a row the card has been through without its issuer.
void mark_velocity(uint16_t counter, uint16_t lastOnline, DataObjects& objects);

}  // namespace quorvel::sim

#endif
