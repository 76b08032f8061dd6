// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "core/serial.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <linux/serial.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include "core/attempt.h"
#include "core/check.h"
#include "core/raise.h"
#include "core/retry.h"
#include "quorvel/kor/exception.h"
#include "quorvel/kor/heap.h"

using namespace kor;

namespace {

constexpr std::array<int, 3> kPurgeQueues{TCIFLUSH, TCOFLUSH, TCIOFLUSH};

// Closes what cannot be used and gives the error that errno held before.
int close_after_error(int fd) {
    const int error = errno;
    close(fd);
    return error;
}

void raise_open_error(const char* path) {
    switch (errno) {
        case EBUSY:
            return raise(KOR_RESULT_DEVICE_BUSY, "Port is busy: %s", path);
        case EACCES:
            return raise(KOR_RESULT_PERMISSION_DENIED, "Permission denied for port : %s", path);
        default:
            return raise(KOR_RESULT_FILE_NOT_FOUND, "No such port: %s", path);
    }
}

// The descriptor of a terminal in blocking mode. O_NONBLOCK only keeps the opening itself from waiting for a carrier.
int open_terminal(const char* path) {
    if (path == nullptr) { return raise(KOR_RESULT_FILE_NOT_FOUND, "No such port: %s", "(null)"), -1; }
    const int fd = retry([&] { return open(path, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC); });
    if (fd < 0) { return raise_open_error(path), -1; }
    termios settings{};
    if (tcgetattr(fd, &settings) != 0) {
        return raise(KOR_RESULT_IO_ERROR, "tcgetattr() error: %d", close_after_error(fd)), -1;
    }
    const int flags = fcntl(fd, F_GETFL);
    if (flags < 0) { return raise(KOR_RESULT_IO_ERROR, "fcntl(F_GETFL) error: %d", close_after_error(fd)), -1; }
    if (fcntl(fd, F_SETFL, flags & ~O_NONBLOCK) < 0) {
        return raise(KOR_RESULT_IO_ERROR, "fcntl(F_SETFL) error: %d", close_after_error(fd)), -1;
    }
    return fd;
}

}  // namespace

bool kor::claim(const KorSerial* handle, const char* path) {
    if (retry([&] { return flock(handle->fd, LOCK_EX | LOCK_NB); }) != 0) {
        if (errno == EWOULDBLOCK) { return raise(KOR_RESULT_DEVICE_BUSY, "Port is busy: %s", path), false; }
        return raise(KOR_RESULT_IO_ERROR, "flock() error: %d", errno), false;
    }
    if (ioctl(handle->fd, TIOCEXCL) == 0) { return true; }
    return raise(KOR_RESULT_IO_ERROR, "ioctl(TIOCEXCL) error: %d", errno), false;
}

// By itself closing ends the claim only once every copy of the descriptor is closed, in child processes too. A line
// that hung up has nothing to give back.
void kor::release(const KorSerial* handle) {
    ioctl(handle->fd, TIOCNXCL);
    flock(handle->fd, LOCK_UN);
}

bool kor::set_low_latency(const KorSerial* handle, bool low) {
    serial_struct settings{};
    if (ioctl(handle->fd, TIOCGSERIAL, &settings) != 0) { return false; }
    constexpr int kLow = static_cast<int>(ASYNC_LOW_LATENCY);
    const int before = settings.flags;
    settings.flags = low ? before | kLow : before & ~kLow;
    return settings.flags != before && ioctl(handle->fd, TIOCSSERIAL, &settings) == 0;
}

bool kor::set_blocking(const KorSerial* handle, bool blocking) {
    const int flags = fcntl(handle->fd, F_GETFL);
    if (flags < 0) { return raise(KOR_RESULT_IO_ERROR, "fcntl(F_GETFL) error: %d", errno), false; }
    if (fcntl(handle->fd, F_SETFL, blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK) == 0) { return true; }
    return raise(KOR_RESULT_IO_ERROR, "fcntl(F_SETFL) error: %d", errno), false;
}

KorSerial* kor_serial_open(const char* path) {
    auto* handle = static_cast<KorSerial*>(kor_heap_alloc(sizeof(KorSerial), 0));
    if (handle == nullptr) { return nullptr; }
    handle->fd = -1;
    attempt([&] { handle->fd = open_terminal(path); })
        .on_any([&] {
            KorException error;
            kor_exception_get(&error);
            kor_heap_free(handle);
            handle = nullptr;
            kor_exception_fthrow(error.error, "%s", error.message);
        })
        .run();
    return handle;
}

void kor_serial_close(KorSerial** handle) {
    if (handle == nullptr || *handle == nullptr) { return; }
    const int fd = (*handle)->fd;
    kor_heap_free(*handle);
    *handle = nullptr;
    // A signal does not keep it from closing, and the number may be another file's by now.
    if (close(fd) != 0 && errno != EINTR) { raise(KOR_RESULT_IO_ERROR, "close() error: %d", errno); }
}

void kor_serial_purge(KorSerial* handle, int32_t purgeType) {
    if (refuse_null(handle, "'handle' is NULL")) { return; }
    if (purgeType < KOR_SERIAL_PURGE_INPUT || purgeType > KOR_SERIAL_PURGE_BOTH) {
        return raise(KOR_RESULT_RUNTIME_ERROR, "Unsupported purgeType: %d", purgeType);
    }
    if (tcflush(handle->fd, kPurgeQueues[static_cast<size_t>(purgeType)]) != 0) {
        return raise(KOR_RESULT_IO_ERROR, "tcflush() error: %d", errno);
    }
}

size_t kor_serial_available(KorSerial* handle) {
    if (refuse_null(handle, "'handle' is NULL")) { return 0; }
    int count = 0;
    if (ioctl(handle->fd, FIONREAD, &count) != 0) {
        return raise(KOR_RESULT_IO_ERROR, "ioctl(FIONREAD) error: %d", errno), 0;
    }
    return static_cast<size_t>(count);
}
