// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/exam/process.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include "wire/descriptor.h"

namespace quorvel::sim::exam {

namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t kKept = 65536;
constexpr int kSignalled = 128;

// The texts and what stands behind them, as exec() takes it.
std::vector<char*> pointers(std::vector<std::string>& texts, char* const* behind) {
    std::vector<char*> all;
    all.reserve(texts.size() + 1);
    for (std::string& text : texts) { all.push_back(text.data()); }
    for (; *behind != nullptr; ++behind) { all.push_back(*behind); }
    all.push_back(nullptr);
    return all;
}

void require(int error, const std::string& what) {
    if (error != 0) { throw std::system_error(error, std::generic_category(), what); }
}

// What posix_spawn() is told, between its making and its destroying.
template <typename Told, auto kInit, auto kDestroy>
class Spawn {
public:
    Spawn() { kInit(&told_); }
    ~Spawn() { kDestroy(&told_); }
    Spawn(const Spawn&) = delete;
    Spawn& operator=(const Spawn&) = delete;

    [[nodiscard]] Told* get() { return &told_; }

private:
    Told told_{};
};

// What the child begins with: a group of its own, and the signals as they come.
class Attributes : public Spawn<posix_spawnattr_t, posix_spawnattr_init, posix_spawnattr_destroy> {
public:
    Attributes() {
        posix_spawnattr_setflags(get(), POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        posix_spawnattr_setpgroup(get(), 0);
        sigset_t all;
        sigfillset(&all);
        posix_spawnattr_setsigdefault(get(), &all);
        sigemptyset(&all);
        posix_spawnattr_setsigmask(get(), &all);
    }
};

static_assert(std::atomic<bool>::is_always_lock_free, "stop() is called in signal handlers");
std::atomic<bool> stopped{false};
// How often somebody who waits looks whether it is over.
constexpr std::chrono::milliseconds kGlance{100};

class Files
    : public Spawn<posix_spawn_file_actions_t, posix_spawn_file_actions_init, posix_spawn_file_actions_destroy> {
public:
    explicit Files(int output) {
        posix_spawn_file_actions_addopen(get(), STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(get(), output, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(get(), output, STDERR_FILENO);
    }
};

}  // namespace

void stop() noexcept { stopped = true; }
bool is_stopped() noexcept { return stopped; }

Process::~Process() {
    clean_up();
    close_all();
}

void Process::close_all() {
    for (int* each : {&pipe_, &end_}) {
        if (*each >= 0) { ::close(*each); }
        *each = -1;
    }
}

void Process::start(const std::vector<std::string>& command, const std::vector<std::string>& environment) {
    const std::lock_guard lock(mutex_);
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) { require(errno, "pipe2"); }
    pipe_ = ends[0];
    const wire::Descriptor output(ends[1], "pipe2");
    std::vector<std::string> words = command;
    // They stand before those of this program that have the same name, which are passed over.
    std::vector<std::string> variables = environment;
    char* const nothing = nullptr;
    Attributes attributes;
    Files files(output.get());
    pid_t process = 0;
    const int error = ::posix_spawnp(&process, words.front().c_str(), files.get(), attributes.get(),
                                     pointers(words, &nothing).data(), pointers(variables, environ).data());
    require(error, words.front());
    group_ = process;
    // The C library declares it for C only.
    end_ = static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
    if (end_ < 0) { require(errno, "pidfd_open"); }
}

void Process::signal(int number) {
    const std::lock_guard lock(mutex_);
    if (group_ != 0 && !reaped_) { ::kill(-group_, number); }
}

// False when nothing is there now.
bool Process::hear() {
    std::array<char, 4096> bytes{};
    pollfd polled{pipe_, POLLIN, 0};
    if (::poll(&polled, 1, 0) <= 0) { return false; }
    const ssize_t count = ::read(pipe_, bytes.data(), bytes.size());
    if (count <= 0) { return false; }
    output_.append(bytes.data(), std::min(static_cast<size_t>(count), kKept - output_.size()));
    return true;
}

Ended Process::reap() {
    const std::lock_guard lock(mutex_);
    int status = 0;
    while (::waitpid(group_, &status, 0) < 0 && errno == EINTR) {}
    reaped_ = true;
    while (hear()) {}
    return {WIFSIGNALED(status) ? kSignalled + WTERMSIG(status) : WEXITSTATUS(status), output_};
}

std::optional<Ended> Process::wait(std::chrono::milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    bool open = true;
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 || is_stopped()) { return std::nullopt; }
        std::array<pollfd, 2> polled{{{open ? pipe_ : -1, POLLIN, 0}, {end_, POLLIN, 0}}};
        if (::poll(polled.data(), polled.size(), static_cast<int>(std::min(left, kGlance).count())) < 0) { continue; }
        if (polled[0].revents != 0) { open = hear(); }
        if (polled[1].revents != 0) { return reap(); }
    }
}

bool Process::clean_up() {
    if (group_ == 0) { return false; }
    const bool left = ::kill(-group_, SIGKILL) == 0;
    if (!reaped_) { static_cast<void>(reap()); }
    group_ = 0;
    return left;
}

}  // namespace quorvel::sim::exam
