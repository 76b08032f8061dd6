// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_INTERFACE_EXPORTED_NAMES_H
#define QUORVEL_TESTS_INTERFACE_EXPORTED_NAMES_H

#include <fstream>
#include <iterator>
#include <set>
#include <string>

inline std::set<std::string> exported_names() {
    std::ifstream exports(QUORVEL_EXPORTS);
    return {std::istream_iterator<std::string>(exports), {}};
}

#endif
