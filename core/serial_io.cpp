// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <iterator>
#include <limits>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include "core/byte_order.h"
#include "core/check.h"
#include "core/raise.h"
#include "core/retry.h"
#include "core/serial.h"

using namespace kor;
using namespace std::chrono_literals;

namespace {

// How long a read waits, in tenths of a second; -1 when the port was never told, so that read() itself decides.
int read_timeout(int fd) {
    termios settings{};
    // A hung-up line has no settings any more and nothing to wait for.
    if (tcgetattr(fd, &settings) != 0) { return 0; }
    return settings.c_cc[VMIN] == 0 ? settings.c_cc[VTIME] : -1;
}

// As poll() wants it: -1 is for ever.
int poll_time(Deadline deadline) {
    if (deadline.is_never()) { return -1; }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline.left());
    return static_cast<int>(std::min<int64_t>(left.count(), std::numeric_limits<int>::max()));
}

// From one look at what is still to be sent to the next: the time of four bytes.
constexpr std::chrono::milliseconds kDrainPause{2};

enum class Wait { kInput, kHungUp, kWoken, kExpired };

// Waits here and not in read(): the terminal's own timer starts again with every signal that restarts the read, so
// that under a fast interval timer it would never expire.
Wait wait_until(int fd, Deadline deadline, Waker* waker = nullptr) {
    for (;;) {
        pollfd waited[] = {{fd, POLLIN, 0}, {waker != nullptr ? waker->fd : -1, POLLIN, 0}};
        const int ready = poll(waited, std::size(waited), poll_time(deadline));
        if (ready == 0) { return Wait::kExpired; }
        if (ready < 0 && errno != EINTR) { return Wait::kInput; }
        if (ready < 0) { continue; }
        if (waker != nullptr && waited[1].revents != 0) {
            clear_wakes(*waker);
            waker->woke = waited[0].revents == 0;
        }
        if (waited[0].revents == 0) { return Wait::kWoken; }
        return (waited[0].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0 ? Wait::kHungUp : Wait::kInput;
    }
}

// The number of bytes that came together, 0 when none did in time, or -1 with errno. Where another process takes the
// bytes first, the wait goes on.
ssize_t read_arrival(int fd, uint8_t* to, size_t length, Deadline deadline, Waker* waker = nullptr) {
    if (waker != nullptr) { waker->woke = false; }
    for (;;) {
        const Wait wait = wait_until(fd, deadline, waker);
        if (wait == Wait::kExpired || wait == Wait::kWoken) { return 0; }
        const ssize_t count = retry([&] { return read(fd, to, length); });
        if (count > 0 || (count < 0 && errno != EAGAIN)) { return count; }
        // A line that hung up reads as empty at once and for ever: as a time-out it would keep its callers spinning.
        if (wait == Wait::kHungUp) { return errno = EIO, -1; }
        if (deadline.passed()) { return 0; }
    }
}

// What a read came to: fewer bytes than were wanted mean that the time-out expired or, with an error, that it failed.
struct Obtained {
    size_t count = 0;
    int error = 0;
};

Obtained read_bytes(const KorSerial* handle, uint8_t* to, size_t length) {
    const int tenths = read_timeout(handle->fd);
    size_t obtained = 0;
    while (obtained < length) {
        uint8_t* next = to + obtained;
        const size_t wanted = length - obtained;
        const ssize_t count = tenths < 0 ? retry([&] { return read(handle->fd, next, wanted); })
                                         : read_arrival(handle->fd, next, wanted, Deadline(tenths * 100ms));
        if (count < 0) { return {obtained, errno}; }
        if (count == 0) { break; }
        obtained += static_cast<size_t>(count);
    }
    return {obtained};
}

// False after it raised.
bool read_all(const KorSerial* handle, void* to, size_t length) {
    if (refuse_null(handle, "'handle' is NULL")) { return false; }
    const Obtained obtained = read_bytes(handle, static_cast<uint8_t*>(to), length);
    if (obtained.error != 0) { return raise(KOR_RESULT_IO_ERROR, "read() error: %d", obtained.error), false; }
    if (obtained.count < length) { return raise(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data"), false; }
    return true;
}

// False when the deadline has passed. A failure is for the next call on the port to report.
bool wait_for_room(int fd, Deadline deadline) {
    pollfd waited{fd, POLLOUT, 0};
    return retry([&] { return poll(&waited, 1, poll_time(deadline)); }) != 0;
}

// Goes on after a write that took nothing; `count` is what it returned.
size_t write_after_all(const KorSerial* handle, std::span<const uint8_t> bytes, Deadline deadline, ssize_t count) {
    while (count < 0 && (errno == EINTR || errno == EAGAIN)) {
        const bool full = errno == EAGAIN;
        if (full && (deadline.passed() || !wait_for_room(handle->fd, deadline))) { return 0; }
        count = write(handle->fd, bytes.data(), bytes.size());
    }
    if (count > 0) { return static_cast<size_t>(count); }
    // Kept across tcdrain(); a write of nothing is a failure too, or the caller would never come to an end.
    const int error = count == 0 ? EIO : errno;
    if (drain(handle)) { raise(KOR_RESULT_IO_ERROR, "write() error: %d", error); }
    return 0;
}

// Writes once. The number written, or 0 after it raised or when the deadline has passed; where a line that has hung up
// refuses the bytes, it is the drain that reports it.
[[gnu::always_inline]] inline size_t write_some(const KorSerial* handle, std::span<const uint8_t> bytes,
                                                Deadline deadline) {
    const ssize_t count = write(handle->fd, bytes.data(), bytes.size());
    return count > 0 ? static_cast<size_t>(count) : write_after_all(handle, bytes, deadline, count);
}

// How many bytes the port has yet to send; none where it cannot tell.
int unsent(int fd) {
    int count = 0;
    return ioctl(fd, TIOCOUTQ, &count) == 0 ? count : 0;
}

}  // namespace

bool kor::wait_for_input(const KorSerial* handle, Deadline deadline) {
    return wait_until(handle->fd, deadline) != Wait::kExpired;
}

size_t kor::read_arrived(const KorSerial* handle, Deadline deadline, std::span<uint8_t> to, Waker* waker) {
    const ssize_t count = read_arrival(handle->fd, to.data(), to.size(), deadline, waker);
    if (count < 0) { return raise(KOR_RESULT_IO_ERROR, "read() error: %d", errno), 0; }
    return static_cast<size_t>(count);
}

bool kor::enqueue(const KorSerial* handle, std::span<const uint8_t>& bytes, Deadline deadline, size_t piece) {
    while (!bytes.empty()) {
        const size_t written = write_some(handle, bytes.first(std::min(piece, bytes.size())), deadline);
        if (written == 0) { return false; }
        bytes = bytes.subspan(written);
    }
    return true;
}

// tcdrain() waits as long as it takes: with a deadline it comes when there is nothing left to wait for.
bool kor::drain(const KorSerial* handle, Deadline deadline) {
    while (!deadline.is_never() && unsent(handle->fd) > 0) {
        if (deadline.passed()) { return false; }
        sleep_out(kDrainPause);
    }
    if (retry([&] { return tcdrain(handle->fd); }) == 0) { return true; }
    return raise(KOR_RESULT_IO_ERROR, "tcdrain() error: %d", errno), false;
}

void kor_serial_write(KorSerial* handle, const void* bytes, size_t length) {
    if (refuse_null(handle, "'handle' is NULL")) { return; }
    std::span left(static_cast<const uint8_t*>(bytes), length);
    while (!left.empty()) {
        const size_t written = write_some(handle, left, Deadline::never());
        if (written == 0 || !drain(handle)) { return; }
        left = left.subspan(written);
    }
}

void kor_serial_write_byte(KorSerial* handle, uint8_t byte) { kor_serial_write(handle, &byte, sizeof byte); }

void kor_serial_write_str(KorSerial* handle, const char* text, bool withTerminator) {
    if (refuse_null(handle, "'handle' is NULL")) { return; }
    if (refuse_null(text, "'text' is NULL")) { return; }
    kor_serial_write(handle, text, std::strlen(text) + (withTerminator ? 1 : 0));
}

void kor_serial_write_ui16(KorSerial* handle, uint16_t value, int32_t byteOrder) {
    write_ordered<kor_serial_write>(handle, value, byteOrder);
}

void kor_serial_write_i16(KorSerial* handle, int16_t value, int32_t byteOrder) {
    kor_serial_write_ui16(handle, static_cast<uint16_t>(value), byteOrder);
}

void kor_serial_write_ui32(KorSerial* handle, uint32_t value, int32_t byteOrder) {
    write_ordered<kor_serial_write>(handle, value, byteOrder);
}

void kor_serial_write_i32(KorSerial* handle, int32_t value, int32_t byteOrder) {
    kor_serial_write_ui32(handle, static_cast<uint32_t>(value), byteOrder);
}

size_t kor_serial_read(KorSerial* handle, void* buffer, size_t length) {
    if (refuse_null(handle, "'handle' is NULL")) { return 0; }
    const Obtained obtained = read_bytes(handle, static_cast<uint8_t*>(buffer), length);
    // What came before the line hung up is the caller's; the next call finds the line as it is.
    if (obtained.error == 0 || (obtained.error == EIO && obtained.count > 0)) { return obtained.count; }
    return raise(KOR_RESULT_IO_ERROR, "read() error: %d", obtained.error), 0;
}

uint8_t kor_serial_read_byte(KorSerial* handle) {
    uint8_t byte = 0;
    return read_all(handle, &byte, sizeof byte) ? byte : uint8_t{0};
}

uint16_t kor_serial_read_ui16(KorSerial* handle, int32_t byteOrder) {
    uint16_t value = 0;
    return read_all(handle, &value, sizeof value) ? ordered(value, byteOrder) : uint16_t{0};
}

int16_t kor_serial_read_i16(KorSerial* handle, int32_t byteOrder) {
    return static_cast<int16_t>(kor_serial_read_ui16(handle, byteOrder));
}

uint32_t kor_serial_read_ui32(KorSerial* handle, int32_t byteOrder) {
    uint32_t value = 0;
    return read_all(handle, &value, sizeof value) ? ordered(value, byteOrder) : uint32_t{0};
}

int32_t kor_serial_read_i32(KorSerial* handle, int32_t byteOrder) {
    return static_cast<int32_t>(kor_serial_read_ui32(handle, byteOrder));
}

char* kor_serial_read_str(KorSerial* handle, char* buffer, size_t size) {
    if (refuse_null(handle, "'handle' is NULL")) { return buffer; }
    if (refuse_null(buffer, "'buffer' is NULL")) { return buffer; }
    char byte = '\0';
    size_t at = 0;
    do {
        if (!read_all(handle, &byte, sizeof byte)) { return buffer; }
        // What does not fit takes the last place in turn, until the NUL does.
        if (at < size) { buffer[at] = byte; }
        if (at + 1 < size) { ++at; }
    } while (byte != '\0');
    return buffer;
}
