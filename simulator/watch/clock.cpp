// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/watch/clock.h"

#include <ctime>
#include <fmt/chrono.h>
#include <stdexcept>

namespace quorvel::sim {

namespace {

using std::chrono::system_clock;

// What does not come back as it was written is no time, such as the 30th of February.
bool is_written_so(const std::tm& time, const std::string& text) {
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}", time) == text.substr(0, text.find('Z'));
}

}  // namespace

WallClock standing_clock(const std::string& time) {
    const bool utc = time.ends_with('Z');
    std::tm parts{};
    parts.tm_isdst = -1;
    const char* const end = ::strptime(time.c_str(), utc ? "%Y-%m-%dT%H:%M:%SZ" : "%Y-%m-%dT%H:%M:%S", &parts);
    const std::time_t seconds = utc ? ::timegm(&parts) : std::mktime(&parts);
    if (end == nullptr || *end != '\0' || !is_written_so(parts, time)) {
        throw std::invalid_argument(fmt::format("\"{}\" is no time like 2026-01-02T03:04:05Z", time));
    }
    return [at = system_clock::from_time_t(seconds)] { return at; };
}

std::string time_text(system_clock::time_point time) {
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count() % 1000;
    return fmt::format("{:%F %T}.{:03}", fmt::localtime(system_clock::to_time_t(time)), ms);
}

}  // namespace quorvel::sim
