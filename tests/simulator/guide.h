// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SIMULATOR_GUIDE_H
#define QUORVEL_TESTS_SIMULATOR_GUIDE_H

#include <fstream>
#include <string>
#include <vector>

namespace quorvel::sim {

// The table of a guide whose head begins with those words, row by row, without the head.
inline std::vector<std::vector<std::string>> table_of_guide(const std::string& page, const std::string& head) {
    std::ifstream file(QUORVEL_DOCS "/" + page);
    std::vector<std::vector<std::string>> rows;
    bool inside = false;
    for (std::string line; std::getline(file, line);) {
        if (!inside || line.empty() || line.starts_with("|-")) {
            inside = inside ? !line.empty() : line.starts_with(head);
            continue;
        }
        std::vector<std::string> cells;
        for (size_t at = 2, end = line.find(" |", at); end != std::string::npos; end = line.find(" |", at)) {
            cells.push_back(line.substr(at, end - at));
            at = end + 3;
        }
        rows.push_back(std::move(cells));
    }
    return rows;
}

}  // namespace quorvel::sim

#endif
