// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_SERIAL_H
#define QUORVEL_CORE_SERIAL_H

#include "core/deadline.h"
#include "quorvel/kor/serial.h"

struct KorSerial {
    int32_t fd;
};

namespace kor {

// kor_serial_list_ports over the entries of `directory`, which ends with a slash.
KorList* list_serial_ports(const char* directory, KorList* out);

// The two below wait by the deadline; the port's own read time-out plays no part. A line that hangs up ends both waits.

// Whether there is something to read, or a failure for the next call on the port to report.
[[nodiscard]] bool wait_for_input(const KorSerial* handle, Deadline deadline);

// False when no byte came in time, or after it raised IO_ERROR "read() error: %d".
[[nodiscard]] bool read_byte(const KorSerial* handle, Deadline deadline, uint8_t* byte);

}  // namespace kor

#endif
