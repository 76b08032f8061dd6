// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_WAKER_H
#define QUORVEL_CORE_WAKER_H

namespace kor {

// Ends a wait of another thread, or that a signal has interrupted: of the one that is going on, or else of the next.
struct Waker {
    int fd = -1;        // readable from a wake to the wait that it ends
    bool woke = false;  // whether a wake ended the last wait
};

// False after it raised IO_ERROR "eventfd() error: %d".
bool open_waker(Waker& waker);
void close_waker(Waker& waker);

// A signal handler may call it. errno stays as it was.
void wake(const Waker& waker);

// Uses up the wakes so far.
void clear_wakes(const Waker& waker);

}  // namespace kor

#endif
