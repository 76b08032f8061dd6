// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/harness.h"

namespace fs = std::filesystem;

// In place of the fuzzer: runs the harness once for each file of a folder, in an order that is the same everywhere.
int main(int count, char** arguments) {
    if (count != 2) { return std::fputs("usage: replay FOLDER\n", stderr), 2; }
    try {
        std::vector<fs::path> paths;
        for (const auto& entry : fs::directory_iterator(arguments[1])) { paths.push_back(entry.path()); }
        std::ranges::sort(paths);
        for (const fs::path& path : paths) {
            std::ifstream file(path, std::ios::binary);
            const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
            // Said before, so that a crash is found by the last line.
            std::fprintf(stderr, "%s\n", path.filename().c_str());
            if (!file) { return std::fputs("cannot be read\n", stderr), 1; }
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
        }
        if (paths.empty()) { return std::fputs("the folder is empty\n", stderr), 1; }
    } catch (const std::exception& error) { return std::fprintf(stderr, "%s\n", error.what()), 1; }
    return 0;
}
