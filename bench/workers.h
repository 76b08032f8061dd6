// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_BENCH_WORKERS_H
#define QUORVEL_BENCH_WORKERS_H

#include "bench/exchange.h"

namespace quorvel::bench {

// Processes that do exchanges at the same time, each on a line of its own, until the process that made them ends. One
// process would not do: the library serves one line at a time.
class Workers {
public:
    // Each opens its line by itself; when this returns, all are open.
    Workers(size_t count, const std::function<Run(size_t line)>& open);
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    // Each does so many exchanges; when this returns, all are done.
    void run(int exchanges) const;

private:
    void await() const;

    std::vector<int> orders_;
};

}  // namespace quorvel::bench

#endif
