// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/line/holders.h"

#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace quorvel::sim {

namespace {

namespace fs = std::filesystem;

// Processes come and go meanwhile, and so do their descriptors.
bool holds(const fs::path& descriptors, const std::string& device, const std::string& except) {
    std::error_code error;
    for (fs::directory_iterator each(descriptors, error), end; !error && each != end; each.increment(error)) {
        std::error_code gone;
        if (each->path().filename() != except && fs::read_symlink(each->path(), gone) == device) { return true; }
    }
    return false;
}

}  // namespace

bool is_held(const std::string& device, int own) {
    const std::string self = std::to_string(::getpid());
    std::error_code error;
    for (fs::directory_iterator each("/proc", error), end; !error && each != end; each.increment(error)) {
        const std::string process = each->path().filename().string();
        if (process.find_first_not_of("0123456789") != std::string::npos) { continue; }
        if (holds(each->path() / "fd", device, process == self ? std::to_string(own) : "")) { return true; }
    }
    return false;
}

}  // namespace quorvel::sim
