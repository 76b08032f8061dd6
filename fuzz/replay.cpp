// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

#include "fuzz/harness.h"

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<char>;

// With a few bytes gone, doubled or changed. The same each time.
Bytes spoilt(Bytes bytes, std::minstd_rand& chance) {
    for (auto left = 1 + chance() % 4; left != 0 && !bytes.empty(); --left) {
        const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(chance() % bytes.size());
        switch (chance() % 4) {
            case 0:
                bytes.erase(at);
                break;
            case 1:
                bytes.insert(at, *at);
                break;
            case 2:
                *at = static_cast<char>(chance());
                break;
            default:
                *at = static_cast<char>(*at ^ 1 << chance() % 8);
        }
    }
    return bytes;
}

void run(const Bytes& bytes) { LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()); }

}  // namespace

// In place of the fuzzer: runs the harness for each file of a folder, in an order that is the same everywhere, and for
// so many spoilt copies of it.
int main(int count, char** arguments) {
    if (count != 3) { return std::fputs("usage: replay FOLDER COPIES\n", stderr), 2; }
    const int copies = std::atoi(arguments[2]);
    std::minstd_rand chance;
    try {
        std::vector<fs::path> paths;
        for (const auto& entry : fs::directory_iterator(arguments[1])) { paths.push_back(entry.path()); }
        std::ranges::sort(paths);
        for (const fs::path& path : paths) {
            std::ifstream file(path, std::ios::binary);
            const Bytes bytes(std::istreambuf_iterator<char>(file), {});
            // Said before, so that a crash is found by the last line.
            std::fprintf(stderr, "%s\n", path.filename().c_str());
            if (!file) { return std::fputs("cannot be read\n", stderr), 1; }
            run(bytes);
            for (int i = 0; i < copies; ++i) { run(spoilt(bytes, chance)); }
        }
        if (paths.empty()) { return std::fputs("the folder is empty\n", stderr), 1; }
    } catch (const std::exception& error) { return std::fprintf(stderr, "%s\n", error.what()), 1; }
    return 0;
}
