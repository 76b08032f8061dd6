// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_WORDS_H
#define QUORVEL_WIRE_WORDS_H

#include <string>

#include "wire/frame.h"
#include "wire/packet.h"

namespace quorvel::wire {

// SPE_AMOUNT="000000001000", SPE_TIMEOUT=60, SPE_IDLIST=80018003, PP_PAN: 16 bytes withheld.
[[nodiscard]] std::string words_for(const Item& item);
// Of one that is withheld too.
[[nodiscard]] std::string whole_words_for(const Item& item);

// "GIX device information: SPE_IDLIST=80018003", "GTS 000 OK: GTS_TABVER=\"TABLES0001\"".
[[nodiscard]] std::string request_words(ByteView packet);
[[nodiscard]] std::string response_words(ByteView packet);
// The same with what is private in them.
[[nodiscard]] std::string whole_words_for(Sender sender, ByteView packet);
[[nodiscard]] std::string control_words(uint8_t byte);
// Of what the host sent.
[[nodiscard]] std::string reception_words(const Reception& reception);

}  // namespace quorvel::wire

#endif
