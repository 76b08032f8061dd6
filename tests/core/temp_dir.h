// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_CORE_TEMP_DIR_H
#define QUORVEL_TESTS_CORE_TEMP_DIR_H

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <vector>

#include "quorvel/kor/string_list.h"

// A directory of the test's own, removed with all that is in it.
class TempDir {
public:
    TempDir() : path_(testing::TempDir() + "quorvel-XXXXXX") {
        if (mkdtemp(path_.data()) == nullptr) { throw std::runtime_error("mkdtemp"); }
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempDir(TempDir&&) = delete;

    [[nodiscard]] std::string operator/(const std::string& name) const { return path_ + "/" + name; }

    std::string file(const std::string& name, std::string_view content = "") const {
        std::ofstream(*this / name, std::ios::binary) << content;
        return *this / name;
    }

    std::string dir(const std::string& name) const {
        std::filesystem::create_directory(*this / name);
        return *this / name;
    }

    std::string link(const std::string& name, const std::string& target) const {
        std::filesystem::create_symlink(target, *this / name);
        return *this / name;
    }

private:
    std::string path_;
};

// The number of descriptors that the process has open.
inline size_t open_descriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(all), end(all)));
}

// The descriptor under which the process has the file open, or -1.
inline int descriptor_of(const std::string& path) {
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (std::filesystem::read_symlink(entry, gone) == path) { return std::stoi(entry.path().filename()); }
    }
    return -1;
}

// While one lives, the process can open nothing.
struct NoDescriptors {
    NoDescriptors() {
        getrlimit(RLIMIT_NOFILE, &before);
        const rlimit none{0, before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &before); }

    rlimit before{};
};

// The texts of a string list.
inline std::vector<std::string> texts_of(const KorList* list) {
    std::vector<std::string> all;
    for (auto* node = kor_string_list_first(list); node != nullptr; node = kor_string_list_next(node)) {
        all.emplace_back(kor_string_list_item(node));
    }
    return all;
}

// The same where a directory has given their order.
inline std::vector<std::string> sorted(const KorList* list) {
    std::vector<std::string> all = texts_of(list);
    std::sort(all.begin(), all.end());
    return all;
}

#endif
