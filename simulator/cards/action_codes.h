// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDS_ACTION_CODES_H
#define QUORVEL_SIMULATOR_CARDS_ACTION_CODES_H

#include "simulator/wire.h"
#include "wire/tlv.h"

namespace quorvel::sim {

// Which bits of the terminal verification results decline a transaction, have the issuer asked, or decline when it
// cannot be asked. Codes that are empty name no bit.
struct ActionCodes {
    Bytes denial = {};
    Bytes online = {};
    Bytes otherwise = {};

    // Those of both: the issuer's, which stand on the card, and the acquirer's.
    [[nodiscard]] ActionCodes with(const ActionCodes& other) const;

    // The card's own. One that has none declines who is not verified and has the issuer asked about all else.
    [[nodiscard]] static ActionCodes of_card(const DataObjects& objects);
};

// Whether a bit of the code is set in the results too.
[[nodiscard]] bool meets(ByteView code, ByteView results);

}  // namespace quorvel::sim

#endif
