// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_BENCH_FAR_END_H
#define QUORVEL_BENCH_FAR_END_H

#include <chrono>
#include <sched.h>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quorvel::bench {

// What goes over a line in one exchange.
struct Traffic {
    std::string request;
    std::string answer;  // with the acknowledgement in front

    [[nodiscard]] size_t size() const { return request.size() + answer.size(); }
};

// A byte at 19200 baud, with its start bit and its stop bit.
inline constexpr std::chrono::nanoseconds kByteTime = std::chrono::nanoseconds(std::chrono::seconds(10)) / 19200;

[[noreturn]] void give_up(const std::string& what);

// Keeps the thread on one processor while it stands: the host's end of a line on the first, the far end on the last.
// Otherwise it is chance, and stays so for long, whether the two share one.
class OnOneProcessor {
public:
    enum class End { kHost, kFar };
    explicit OnOneProcessor(End end);
    ~OnOneProcessor();
    OnOneProcessor(const OnOneProcessor&) = delete;
    OnOneProcessor& operator=(const OnOneProcessor&) = delete;

private:
    cpu_set_t before_{};
};

// The far ends of pseudo-terminals, in a process of their own, so that its time is not the host's. They confirm CAN and
// answer each request, which must be the expected one to the byte, with the same bytes.
class FarEnd {
public:
    explicit FarEnd(const Traffic& traffic);
    // So many lines, each of which takes the time of a byte for each byte, in both directions.
    FarEnd(const Traffic& traffic, std::chrono::nanoseconds byteTime, size_t lines);
    ~FarEnd();
    FarEnd(const FarEnd&) = delete;
    FarEnd& operator=(const FarEnd&) = delete;

    [[nodiscard]] const std::string& path(size_t line) const { return lines_[line].path; }

private:
    struct Line {
        Line();

        int master;  // open until the process that answers has it
        std::string path;
        int slave;  // keeps the line up while the host has not opened it
    };

    template <typename Answer>
    void answer_by(Answer&& answer);

    std::vector<Line> lines_;
    pid_t child_ = -1;
};

}  // namespace quorvel::bench

#endif
