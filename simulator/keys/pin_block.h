// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_KEYS_PIN_BLOCK_H
#define QUORVEL_SIMULATOR_KEYS_PIN_BLOCK_H

#include <optional>
#include <string>
#include <string_view>

#include "simulator/keys/key_store.h"
#include "simulator/wire.h"

namespace quorvel::sim {

// Of a PIN in format 0.
inline constexpr size_t kMaxPinDigits = 12;

// ISO 9564 format 0. Without a PAN the PIN's own field alone. Throws std::invalid_argument for a PIN that is not of 4
// to 12 digits.
[[nodiscard]] Bytes pin_block(std::string_view pin, std::string_view pan);

// What enciphers a PIN block: method 0 is DES and 1 triple DES under a working key, 2 and 3 the same under DUKPT.
struct PinKey {
    int method = 0;
    int index = 0;
    // Enciphered under the master key at the index, 8 or 16 bytes; empty for DUKPT.
    Bytes workingKey = {};
};

// The opposite of pin_block(); none for a block that no PIN is in, under that card number.
[[nodiscard]] std::optional<std::string> pin_of(ByteView block, std::string_view pan);

struct PinBlock {
    Bytes block;
    // All zeros when it was no DUKPT key.
    Ksn ksn{};
};

// None when the key is not there or has served all its transactions. Counts a DUKPT key on.
[[nodiscard]] std::optional<PinBlock> encipher_pin(KeyStore& keys, const PinKey& key, std::string_view pan,
                                                   std::string_view pin);

// In clear again, as the acquirer has it. None when the key is not there.
[[nodiscard]] std::optional<Bytes> decipher_pin(const KeyStore& keys, const PinKey& key, const PinBlock& enciphered);

}  // namespace quorvel::sim

#endif
