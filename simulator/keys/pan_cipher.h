// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_KEYS_PAN_CIPHER_H
#define QUORVEL_SIMULATOR_KEYS_PAN_CIPHER_H

#include <string>
#include <string_view>

#include "simulator/wire.h"

// How card numbers and tracks travel once a PAN working key is loaded: the card number's last 16 digits, those of a
// shorter one filled up with F, stand there enciphered, as hexadecimal digits. The key is of 8 or 16 bytes.
namespace quorvel::sim {

// A card number or a track. What no host could read back stays as it is: fewer than 13 digits, other characters among
// them, a sentinel before them. Up to three characters longer than the clear text.
[[nodiscard]] std::string protect_pan(std::string_view text, ByteView key);

// A card number that the host sent so. One that the host sent in clear all the same is given back.
[[nodiscard]] std::string expose_pan(std::string_view pan, ByteView key);

}  // namespace quorvel::sim

#endif
