// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/stream.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "cli/interrupt.h"

namespace quorvel::cli::stream {

namespace {

// A pipe that is writable takes so much without waiting.
constexpr size_t kPiece = PIPE_BUF;

// Whether a write would not wait: it may fail. Waits for that a little.
bool is_ready(int descriptor) noexcept {
    constexpr int kPatienceMs = 20;
    pollfd polled{descriptor, POLLOUT, 0};
    return poll(&polled, 1, kPatienceMs) > 0;
}

// What was written of it; or -1 with the error.
ssize_t write_piece(int descriptor, std::string_view text) noexcept {
    const ssize_t count = ::write(descriptor, text.data(), std::min(text.size(), kPiece));
    return count < 0 && (errno == EINTR || errno == EAGAIN) ? 0 : count;
}

}  // namespace

// For reading only, so that writing there fails.
void secure() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) != -1 || errno != EBADF) { continue; }
        // It gets the lowest number that is free, which is this one.
        static_cast<void>(open("/dev/null", O_RDONLY));
    }
}

int write(int descriptor, std::string_view text) noexcept {
    while (!text.empty()) {
        if (!is_ready(descriptor)) {
            if (interrupt::requested()) { return EINTR; }
            continue;
        }
        const ssize_t count = write_piece(descriptor, text);
        if (count < 0) { return errno; }
        text.remove_prefix(static_cast<size_t>(count));
    }
    return 0;
}

bool offer(int descriptor, std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t count = is_ready(descriptor) ? write_piece(descriptor, text) : -1;
        if (count < 0) { return false; }
        text.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

}  // namespace quorvel::cli::stream
