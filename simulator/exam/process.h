// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_EXAM_PROCESS_H
#define QUORVEL_SIMULATOR_EXAM_PROCESS_H

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "simulator/exam/till.h"

namespace quorvel::sim::exam {

// A program in a process group of its own, with nothing to read, and both of its outputs as one.
// Has every wait() end, of those that have begun, too. Safe in signal handlers.
void stop() noexcept;
[[nodiscard]] bool is_stopped() noexcept;

class Process {
public:
    Process() = default;
    // Whatever is left of the group is killed.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    // The environment is this program's and what is given. Throws std::system_error when there is no such program.
    void start(const std::vector<std::string>& command, const std::vector<std::string>& environment);

    // To all of the group, as a terminal does. Safe from any thread.
    void signal(int number);

    // Takes what it says, of which only the beginning is kept. None when it goes on beyond the limit, or stop() was
    // called.
    [[nodiscard]] std::optional<Ended> wait(std::chrono::milliseconds limit);
    // What it has said so far.
    [[nodiscard]] const std::string& output() const noexcept { return output_; }

    // Kills all of its group; tells whether anything was left.
    bool clean_up();

private:
    bool hear();
    Ended reap();
    void close_all();

    // Held while the process is made, so that nobody signals one that is not known yet.
    std::mutex mutex_;
    pid_t group_ = 0;
    bool reaped_ = false;
    int pipe_ = -1;
    int end_ = -1;
    std::string output_;
};

}  // namespace quorvel::sim::exam

#endif
