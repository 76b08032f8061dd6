// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_FIELD_H_H
#define QUORVEL_ABECS_DATA_FIELD_H_H

#include <cstddef>
#include <cstdint>

#include "quorvel/kor/buffer.h"

namespace abecs {

// Reads an H field as exactly fieldLen / 2 bytes into `to`, which has room for `sizeTo`; returns fieldLen / 2, or 0
// after a raise. For values of a fixed size that fill their field, such as a cryptogram.
//
// abecs_data_read_field_h_raw drops every leading pair "30", for that is the padding. But the padding pair is also how
// a data byte of value 0x30 looks, so one in 256 of such values would come back a byte short; here nothing is taken
// for padding. The checks and texts are those of abecs_data_read_field_h_raw.
size_t read_field_h_bytes(KorBuffer* buffer, uint8_t* to, size_t sizeTo, size_t fieldLen);

}  // namespace abecs

#endif
