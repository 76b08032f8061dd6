// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "bench/workers.h"

#include <array>
#include <csignal>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quorvel::bench {

namespace {

void tell(int to, int number) {
    if (write(to, &number, sizeof number) != sizeof number) { give_up("workers: write"); }
}

bool hear(int from, int& number) { return read(from, &number, sizeof number) == sizeof number; }

// Says that it is ready, and after each order that it is done.
[[noreturn]] void work(int orders, const Run& run) {
    int left = 0;
    do {
        for (; left > 0; --left) { run(); }
        tell(orders, left);
    } while (hear(orders, left));
    _exit(0);
}

}  // namespace

Workers::Workers(size_t count, const std::function<Run(size_t line)>& open) {
    for (size_t line = 0; line < count; ++line) {
        std::array<int, 2> ends{};
        if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0) { give_up("socketpair"); }
        if (fork() == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            work(ends[1], open(line));
        }
        close(ends[1]);
        orders_.push_back(ends[0]);
    }
    await();
}

void Workers::run(int exchanges) const {
    for (const int each : orders_) { tell(each, exchanges); }
    await();
}

void Workers::await() const {
    for (const int each : orders_) {
        int left = 0;
        if (!hear(each, left)) { give_up("workers: one has ended"); }
    }
}

}  // namespace quorvel::bench
