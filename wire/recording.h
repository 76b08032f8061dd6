// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_RECORDING_H
#define QUORVEL_WIRE_RECORDING_H

#include <chrono>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "wire/bytes.h"

namespace quorvel::wire {

// Something that happened in a recorded session. docs/recording.md has the kinds and how they are written.
struct Recorded {
    enum class Mark : char { kHost = '>', kPinPad = '<', kDeed = '*', kFinding = '!' };

    // Since the recording began.
    std::chrono::microseconds time{};
    Mark mark = Mark::kHost;
    // "frame", "sealed", "ack", "insert", "layout".
    std::string kind = {};
    // The packet of a frame, in clear; what has come and is no good frame.
    Bytes bytes = {};
    // The names of the packet's values in whose places test values stand.
    std::vector<std::string> replaced = {};
    // Of deeds and findings what stands behind the kind; of what crossed the line its words, which are not read back.
    std::string text = {};
    // Of the file, from 1.
    size_t line = 0;
};

// Whether a packet stands behind the kind.
[[nodiscard]] bool is_frame(const Recorded& recorded) noexcept;

// Without an end of line.
[[nodiscard]] std::string to_line(const Recorded& recorded);

struct Recording {
    static constexpr std::string_view kFirstLine = "quorvel-recording 1";

    // "seed", "second" and "values".
    std::map<std::string, std::string> settings;
    std::vector<Recorded> events;

    // Whether test values stand in for what is private.
    [[nodiscard]] bool withholds() const;

    // Throws std::runtime_error like "line 7: there is no kind \"fram\"".
    [[nodiscard]] static Recording parse(std::string_view text);
    // Throws std::runtime_error with the path, too.
    [[nodiscard]] static Recording from_file(const std::string& path);
};

}  // namespace quorvel::wire

#endif
