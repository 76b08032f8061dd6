// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/chip.h"

#include <algorithm>
#include <fmt/format.h>

#include "wire/hex.h"

namespace quorvel::sim {

namespace {

constexpr uint8_t kVerifyInstruction = 0x20;
constexpr size_t kPinBlockDigits = 16;

const Bytes kDone{0x90, 0x00};
const Bytes kBlocked{0x69, 0x83};
const Bytes kUnknownInstruction{0x6D, 0x00};

}  // namespace

Bytes Chip::exchange(ByteView header, ByteView data) {
    if (header[1] == kVerifyInstruction && !pin.empty()) { return verify(data); }
    Bytes command(header.begin(), header.end());
    append(command, data);
    const auto found = script.find(command);
    return found != script.end() ? found->second : kUnknownInstruction;
}

bool Chip::accepts_pin(const std::string& typed) { return verify(plain_pin_block('2', typed)) == kDone; }

Bytes Chip::verify(ByteView block) {
    static constexpr int kAllTries = 3;
    if (pinTries == 0) { return kBlocked; }
    if (std::ranges::equal(block, plain_pin_block('2', pin))) {
        pinTries = kAllTries;
        return kDone;
    }
    --pinTries;
    return {0x63, static_cast<uint8_t>(0xC0 + pinTries)};
}

Bytes plain_pin_block(char format, const std::string& pin) {
    std::string digits = fmt::format("{}{:X}{}", format, pin.size(), pin);
    digits.resize(kPinBlockDigits, 'F');
    return from_hex(digits);
}

Chip Chip::standard() {
    return {
        .atr = from_hex("3B6500002063CB6800"),
        .script =
            {
                // SELECT of the payment application, and its file control information.
                {from_hex("00A40400A0000000031010"), from_hex("6F0E8407A0000000031010A50350015A9000")},
                // READ RECORD: track 2 and the card number.
                {from_hex("00B2010C"), from_hex("701D57114111111111111111D30122010000000000"
                                                "5A0841111111111111119000")},
                // GET DATA: tries that are left for the PIN.
                {from_hex("80CA9F17"), from_hex("9F1701039000")},
            },
        .objects =
            {
                {0x57, from_hex("4111111111111111D3012201000000000F")},
                {0x5A, from_hex("4111111111111111")},
                {0x5F20, to_bytes("CARDHOLDER/TEST")},
                {0x5F24, from_hex("301231")},
                {0x5F34, from_hex("01")},
                {0x82, from_hex("3800")},
                {0x84, from_hex("A0000000031010")},
                {0x9F17, from_hex("03")},
            },
        .pin = "1234",
    };
}

}  // namespace quorvel::sim
