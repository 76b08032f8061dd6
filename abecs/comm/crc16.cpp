// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/crc16.h"

#include <span>

#include "core/check.h"
#include "quorvel/abecs/crc16.h"

using namespace abecs;
using namespace kor;

void abecs_crc16(const void* data, size_t length, uint16_t* crc) {
    if (refuse_missing(data, length, "'data' is NULL") || refuse_null(crc, "'crc' is NULL")) { return; }
    for (const uint8_t byte : std::span(static_cast<const uint8_t*>(data), length)) { *crc = crc16_update(*crc, byte); }
}
