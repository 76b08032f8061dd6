// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "core/waker.h"

#include <cerrno>
#include <sys/eventfd.h>
#include <unistd.h>

#include "core/raise.h"

namespace kor {

bool open_waker(Waker& waker) {
    waker.fd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (waker.fd >= 0) { return true; }
    return raise(KOR_RESULT_IO_ERROR, "eventfd() error: %d", errno), false;
}

void close_waker(Waker& waker) {
    if (waker.fd >= 0) { close(waker.fd); }
    waker.fd = -1;
}

// It fails only where so many wakes wait that one more makes no difference.
void wake(const Waker& waker) {
    const int error = errno;
    eventfd_write(waker.fd, 1);
    errno = error;
}

void clear_wakes(const Waker& waker) {
    eventfd_t wakes = 0;
    eventfd_read(waker.fd, &wakes);
}

}  // namespace kor
