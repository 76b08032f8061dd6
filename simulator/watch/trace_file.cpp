// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/watch/trace_file.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace quorvel::sim {

namespace {

constexpr int kOlder = 4;

[[noreturn]] void fail(const std::string& path) { throw std::system_error(errno, std::generic_category(), path); }

}  // namespace

TraceFile::TraceFile(std::string path, size_t most) : path_(std::move(path)), most_(most) { open(); }

void TraceFile::open() {
    const int file = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0) { fail(path_); }
    file_.emplace(file, "open");
    struct stat status {};
    if (::fstat(file, &status) != 0) { fail(path_); }
    rotates_ = S_ISREG(status.st_mode);
    size_ = rotates_ ? static_cast<size_t>(status.st_size) : 0;
}

void TraceFile::write(std::string_view entry) {
    if (rotates_ && size_ > 0 && size_ + entry.size() > most_) { rotate(); }
    while (!entry.empty()) {
        const ssize_t count = ::write(file_->get(), entry.data(), entry.size());
        if (count < 0 && errno != EINTR) { fail(path_); }
        entry.remove_prefix(count < 0 ? 0 : static_cast<size_t>(count));
        size_ += count < 0 ? 0 : static_cast<size_t>(count);
    }
}

void TraceFile::rotate() {
    const auto name = [&](int number) { return number == 0 ? path_ : fmt::format("{}.{}", path_, number); };
    for (int number = kOlder; number > 0; --number) {
        std::error_code missing;
        std::filesystem::rename(name(number - 1), name(number), missing);
    }
    open();
}

}  // namespace quorvel::sim
