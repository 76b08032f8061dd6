// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDS_VERIFICATION_LIST_H
#define QUORVEL_SIMULATOR_CARDS_VERIFICATION_LIST_H

#include <cstdint>
#include <vector>

#include "simulator/cards/chip.h"
#include "simulator/wire.h"
#include "wire/tlv.h"

namespace quorvel::sim {

// One way to verify the cardholder, and when it is meant.
struct VerificationRule {
    enum class Method { kFails, kOfflinePin, kOfflinePinAndSignature, kOnlinePin, kSignature, kNone, kUnknown };

    uint8_t code = 0;
    uint8_t condition = 0;

    [[nodiscard]] Method method() const noexcept;
    // Whether the next rule has its turn when this one is not fulfilled.
    [[nodiscard]] bool leads_on() const noexcept { return (code & 0x40) != 0; }
};

// A card's rules in its order of preference, and the amounts in cents that their conditions are about.
struct VerificationList {
    uint64_t x = 0;
    uint64_t y = 0;
    std::vector<VerificationRule> rules = {};
};

// What stands in the card's object 8E. One that breaks off is read as far as it goes.
[[nodiscard]] VerificationList verification_list(ByteView object);
// The object that a card has which has none of its own: a single rule.
[[nodiscard]] Bytes verification_object(Verification verification);

// What the conditions are about.
struct VerificationContext {
    uint64_t amount = 0;
    // The terminal's capabilities.
    Bytes capabilities = {};
    bool unattended = false;
    bool cash = false;
    bool cashback = false;
    // Whether the transaction's currency is the card's.
    bool ownCurrency = true;

    [[nodiscard]] static VerificationContext of(const DataObjects& objects);
};

[[nodiscard]] bool is_supported(const VerificationRule& rule, const VerificationContext& context);
[[nodiscard]] bool is_meant(const VerificationRule& rule, const VerificationList& list,
                            const VerificationContext& context);

}  // namespace quorvel::sim

#endif
