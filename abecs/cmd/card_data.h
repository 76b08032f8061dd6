// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_CMD_CARD_DATA_H
#define QUORVEL_ABECS_CMD_CARD_DATA_H

#include <cstddef>

#include "quorvel/abecs/comm.h"

namespace abecs {

// Puts a track or a card number into clear, where it stands, when the link has a PAN working key; false when it has
// none. `length` is what the PIN pad said: a text that ends before is taken as it is. Neither the key nor the clear
// text is left anywhere else.
bool decipher_card_data(const AbecsComm* link, char* text, size_t length);

}  // namespace abecs

#endif
