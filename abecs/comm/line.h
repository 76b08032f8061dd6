// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_COMM_LINE_H
#define QUORVEL_ABECS_COMM_LINE_H

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <utility>

#include "core/deadline.h"
#include "core/waker.h"
#include "quorvel/kor/serial.h"

namespace abecs {

// The port of a link, read ahead: all that has arrived is taken in one read and then handed out byte by byte, as if it
// still waited in the port. Nothing that was handed out stays in memory.
struct Line {
    KorSerial* serial = nullptr;
    size_t next = 0;
    size_t end = 0;
    std::array<uint8_t, 1024> ahead{};
    kor::Deadline limit = kor::Deadline::never();  // of the call in progress: no wait goes beyond it
};

[[nodiscard]] inline bool has_ahead(const Line& line) { return line.next != line.end; }

inline bool take_byte(Line& line, uint8_t* byte) {
    *byte = std::exchange(line.ahead[line.next++], uint8_t{0});
    return true;
}

// What has arrived and was not handed out yet.
[[nodiscard]] inline std::span<uint8_t> ahead_of(Line& line) {
    return std::span(line.ahead).subspan(line.next, line.end - line.next);
}

// Forgets, and wipes, the first bytes of that.
inline void drop_ahead(Line& line, size_t count) {
    explicit_bzero(line.ahead.data() + line.next, count);
    line.next += count;
}

// Takes what has arrived, waiting for it until the deadline, or until the waker ends the wait. False when nothing came
// in time. Raises IO_ERROR "read() error: %d".
[[nodiscard]] bool refill(Line& line, kor::Deadline deadline, kor::Waker* waker = nullptr);

// The next byte, waited for no longer than the time from now and the limit. False when it did not come in time.
[[nodiscard]] inline bool read_byte(Line& line, std::chrono::milliseconds wait, const kor::Deadline* limit,
                                    uint8_t* byte) {
    if (!has_ahead(line)) {
        const kor::Deadline deadline(wait);
        if (!refill(line, limit != nullptr ? std::min(deadline, *limit) : deadline)) { return false; }
    }
    return take_byte(line, byte);
}

// The same with a waker, for the first byte of an answer that a person may keep waiting.
[[nodiscard]] inline bool await_byte(Line& line, std::chrono::milliseconds wait, kor::Waker& waker, uint8_t* byte) {
    if (has_ahead(line)) {
        waker.woke = false;
        kor::clear_wakes(waker);
        return take_byte(line, byte);
    }
    return refill(line, kor::Deadline(wait), &waker) && take_byte(line, byte);
}

// Forgets, and wipes, what was read ahead.
void discard_ahead(Line& line);

}  // namespace abecs

#endif
