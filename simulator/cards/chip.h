// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_CARDS_CHIP_H
#define QUORVEL_SIMULATOR_CARDS_CHIP_H

#include <cstdint>
#include <map>
#include <string>

#include "simulator/wire.h"
#include "wire/status.h"
#include "wire/tlv.h"

namespace quorvel::sim {

// How the card wants to know that the cardholder is its owner.
// A device, such as a phone, has done so itself.
enum class Verification { kNone, kSignature, kOfflinePin, kOnlinePin, kDevice };

// The chip of a card, or a security module. It answers from a script.
struct Chip {
    // Answer to reset.
    Bytes atr;
    // Data and status word by the command's header and data, without their lengths.
    std::map<Bytes, Bytes> script;
    DataObjects objects = {};
    // What VERIFY expects, and how often it may still be wrong.
    std::string pin = {};
    int pinTries = 3;
    bool powered = false;
    // The rules of the payment applications.
    Verification verification = Verification::kNone;
    // What the chip wants of the first decision, when it may be otherwise than the PIN pad says.
    enum class First { kAsAsked, kOnline, kDeclined } first = First::kAsAsked;
    // And once the issuer has answered or could not be reached.
    enum class Second { kAsAsked, kApproved, kDeclined } second = Second::kAsAsked;
    // What reading it comes to, other than OK: DUMBCARD for a chip that is mute.
    Status fault = Status::kOk;

    // Data and status word. What is not in the script is an instruction that the chip does not have.
    [[nodiscard]] Bytes exchange(ByteView header, ByteView data);

    // Counts a wrong one, and forgets the errors after the right one.
    [[nodiscard]] bool accepts_pin(const std::string& typed);

    // One that lets itself be selected, read and shown the PIN 1234, with a test card number.
    [[nodiscard]] static Chip standard();

private:
    [[nodiscard]] Bytes verify(ByteView block);
};

// The PIN in a block of 8 bytes under a digit that names the format, as VERIFY in clear takes it.
[[nodiscard]] Bytes plain_pin_block(char format, const std::string& pin);

}  // namespace quorvel::sim

#endif
