// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_SERIAL_SETTINGS_H
#define QUORVEL_CORE_SERIAL_SETTINGS_H

#include <cstdint>
#include <termios.h>

namespace kor {

// The parts of a port's settings, changed in memory only. Each is false after it raised.
bool set_read_timeout(termios& settings, uint8_t tenths);
bool set_baud_rate(termios& settings, int32_t baudRate);
bool set_data_bits(termios& settings, int32_t dataBits);
bool set_stop_bits(termios& settings, int32_t stopBits);
bool set_parity(termios& settings, int32_t parity);
bool set_flow_control(termios& settings, int32_t flowControl);

// Bytes pass unchanged both ways, whatever the port was used for before.
void force_raw(termios& settings);

}  // namespace kor

#endif
