// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_SERIAL_SETTINGS_H
#define QUORVEL_CORE_SERIAL_SETTINGS_H

#include <cstdint>
#include <termios.h>

namespace kor {

// The parts of a port's settings, changed in memory only. Each is false after it raised.
[[nodiscard]] bool set_read_timeout(termios& settings, uint8_t tenths);
[[nodiscard]] bool set_baud_rate(termios& settings, int32_t baudRate);
[[nodiscard]] bool set_data_bits(termios& settings, int32_t dataBits);
[[nodiscard]] bool set_stop_bits(termios& settings, int32_t stopBits);
[[nodiscard]] bool set_parity(termios& settings, int32_t parity);
[[nodiscard]] bool set_flow_control(termios& settings, int32_t flowControl);

// Bytes pass unchanged both ways, whatever the port was used for before; except that size, parity and flow control are
// the setters' own.
void force_raw(termios& settings);

}  // namespace kor

#endif
