// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDS_CARD_H
#define QUORVEL_SIMULATOR_CARDS_CARD_H

#include <optional>
#include <string>
#include <vector>

#include "simulator/cards/chip.h"

namespace quorvel::sim {

// What the card can pay with, and the PIN pad's table record that it selects.
struct Application {
    Bytes aid;
    // At most 16 characters.
    std::string label = {};
    // 1 is credit and 2 debit, as hosts number them.
    unsigned type = 1;
    unsigned acquirer = 0;
    // Two characters.
    std::string record = {};
    // Besides what the chip has for all of its applications.
    DataObjects objects = {};
};

// The card's antenna.
struct Contactless {
    // Whether the card tells no more than its tracks.
    bool stripeData = false;
    Verification verification = Verification::kNone;
    // What reading it comes to, other than OK.
    Status fault = Status::kOk;
};

// A card that the cardholder has in the hand.
struct Card {
    std::string pan;
    // As they stand on the stripe, without sentinels and check character; a track that the card does not have is empty.
    std::string track1 = {};
    std::string track2 = {};
    std::string track3 = {};
    // Six digits: year, month, day.
    std::string expiry = {};
    // At most 26 characters.
    std::string name = {};
    // Three digits, or none.
    std::string serviceCode = {};
    unsigned issuerCountry = 0;
    unsigned panSequence = 0;
    // The order is the card's preference.
    std::vector<Application> applications = {};
    std::optional<Chip> chip = {};
    std::optional<Contactless> contactless = {};
    // Comes as it was made, whatever has become of a card of this number before.
    bool fresh = false;

    [[nodiscard]] bool has_stripe() const noexcept { return !track1.empty() || !track2.empty() || !track3.empty(); }
    // The stripe says that there is a chip to use instead.
    [[nodiscard]] bool prefers_chip() const noexcept {
        return !serviceCode.empty() && (serviceCode.front() == '2' || serviceCode.front() == '6');
    }
    // What the chip or the antenna tells of the card before an application is chosen: the chip's own objects, and those
    // that follow from the rest of the card and that it does not have itself.
    [[nodiscard]] DataObjects objects() const;
};

}  // namespace quorvel::sim

#endif
