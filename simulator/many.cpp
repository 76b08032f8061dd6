// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/many.h"

#include <fmt/format.h>

namespace quorvel::sim {

std::string told_by(unsigned number, std::string_view lines) {
    if (number == 0) { return std::string(lines); }
    std::string told;
    while (!lines.empty()) {
        const size_t end = lines.find('\n');
        const size_t size = end == std::string_view::npos ? lines.size() : end + 1;
        told += fmt::format("{}: {}", number, lines.substr(0, size));
        lines.remove_prefix(size);
    }
    return told;
}

std::string path_of(std::string path, unsigned number) {
    if (number != 0 && !path.empty()) { path += fmt::format(".{}", number); }
    return path;
}

// What carries over the last digit that there is, is lost.
std::string serial_of(std::string first, unsigned number) {
    unsigned carried = number == 0 ? 0 : number - 1;
    for (auto digit = first.rbegin(); carried != 0 && digit != first.rend() && *digit >= '0' && *digit <= '9';
         ++digit) {
        carried += static_cast<unsigned>(*digit - '0');
        *digit = static_cast<char>('0' + carried % 10);
        carried /= 10;
    }
    return first;
}

}  // namespace quorvel::sim
