// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_BENCH_PIN_PAD_H
#define QUORVEL_BENCH_PIN_PAD_H

#include <string>
#include <sys/types.h>

namespace quorvel::bench {

// The far end of a pseudo-terminal in a process of its own, so that its time is not the host's: it confirms CAN and
// answers each request of the given length with the same bytes.
class PinPad {
public:
    PinPad(size_t requestSize, const std::string& answer);
    ~PinPad();
    PinPad(const PinPad&) = delete;
    PinPad& operator=(const PinPad&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

private:
    int slave_;  // keeps the line up while the host has not opened it
    std::string path_;
    pid_t child_;
};

}  // namespace quorvel::bench

#endif
