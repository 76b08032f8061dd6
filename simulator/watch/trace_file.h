// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WATCH_TRACE_FILE_H
#define QUORVEL_SIMULATOR_WATCH_TRACE_FILE_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "wire/descriptor.h"

namespace quorvel::sim {

// A file that entries are written behind. Before it would grow above its size it is called FILE.1, what was that
// FILE.2, and so on up to FILE.4, and a new one begins. An entry is never split. What is no regular file does not
// change its name.
class TraceFile {
public:
    // A file that is not there yet is made for its user alone. Throws std::system_error with the path.
    TraceFile(std::string path, size_t most);

    // Throws std::system_error with the path.
    void write(std::string_view entry);

private:
    void open();
    void rotate();

    const std::string path_;
    const size_t most_;
    bool rotates_ = false;
    size_t size_ = 0;
    std::optional<wire::Descriptor> file_;
};

}  // namespace quorvel::sim

#endif
