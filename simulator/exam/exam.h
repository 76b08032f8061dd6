// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_EXAM_EXAM_H
#define QUORVEL_SIMULATOR_EXAM_EXAM_H

#include <string>
#include <vector>

namespace quorvel::sim::exam {

// What the command line asks for.
struct Request {
    // A file that describes the till; without one it speaks as docs/exam.md says.
    std::string till;
    // In place of the file's.
    std::vector<std::string> command;
    std::vector<std::string> cases;
    // None for as many as the machine bears.
    unsigned jobs = 0;
    // A folder for the reports; none are written without.
    std::string report;
};

// Prints the numbers and titles of the cases.
void list(const std::vector<std::string>& cases);

// Runs the till against the cases, prints what has failed, and writes the reports. Whether nothing has. Throws
// std::exception when it cannot be done.
[[nodiscard]] bool run(const Request& request);

// Ends the tills that run, and the exam: run() throws. Safe in signal handlers.
void request_stop() noexcept;

}  // namespace quorvel::sim::exam

#endif
