// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/crc16.h"

#include <span>

#include "core/raise.h"
#include "quorvel/abecs/crc16.h"

using kor::raise;

void abecs_crc16(const void* data, size_t length, uint16_t* crc) {
    if (data == nullptr && length != 0) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'data' is NULL"); }
    if (crc == nullptr) { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'crc' is NULL"); }
    for (const uint8_t byte : std::span(static_cast<const uint8_t*>(data), length)) {
        *crc = abecs::crc16_update(*crc, byte);
    }
}
