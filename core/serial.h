// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_SERIAL_H
#define QUORVEL_CORE_SERIAL_H

#include <span>

#include "core/deadline.h"
#include "core/waker.h"
#include "quorvel/kor/serial.h"

struct KorSerial {
    int32_t fd;
};

namespace kor {

// kor_serial_list_ports over the entries of `directory`, which ends with a slash.
KorList* list_serial_ports(const char* directory, KorList* out);

// Takes the port for this handle alone: no other claim is granted, nor, but to root, another opening. False after it
// raised DEVICE_BUSY "Port is busy: %s" with the path, or IO_ERROR. `release` gives the port back.
bool claim(const KorSerial* handle, const char* path);
void release(const KorSerial* handle);

// Asks the driver not to hold back what comes, or to do as before. Whether that has changed anything: many drivers have
// no such setting.
bool set_low_latency(const KorSerial* handle, bool low);

// Whether reading and writing may keep the caller, as they do at first. False after it raised IO_ERROR.
bool set_blocking(const KorSerial* handle, bool blocking);

// All below wait by the deadline; the port's own read time-out plays no part. A line that hangs up ends each wait.

// Whether there is something to read, or a failure for the next call on the port to report.
[[nodiscard]] bool wait_for_input(const KorSerial* handle, Deadline deadline);

// Takes what has come, in one read, as soon as there is anything: the number of bytes; 0 when none came in time, or
// after it raised IO_ERROR "read() error: %d". A waker ends the wait too, and is used up by it, but what has come goes
// first.
[[nodiscard]] size_t read_arrived(const KorSerial* handle, Deadline deadline, std::span<uint8_t> to,
                                  Waker* waker = nullptr);

// Hands the bytes to the port, which sends them while the caller goes on; `drain` waits until they have left. False
// after it raised, as kor_serial_write does, and when the deadline has passed, which wants a port that does not block.
// No more than `piece` bytes go in one write. What was written leaves the front of `bytes`.
bool enqueue(const KorSerial* handle, std::span<const uint8_t>& bytes, Deadline deadline, size_t piece = 1);
bool drain(const KorSerial* handle, Deadline deadline = Deadline::never());

}  // namespace kor

#endif
