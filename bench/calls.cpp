// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// What exchanges call of the system, counted and not timed: this program exports functions of these names, and the
// library's calls land here first. Prints them as JSON: each exchange, each way, the mean number of calls.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <poll.h>
#include <string>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include "bench/exchange.h"

namespace {

enum Call { kWrite, kRead, kPoll, kTcdrain, kIoctl, kTcgetattr, kTcsetattr, kTcflush, kClockGettime, kMalloc, kCalls };
constexpr std::array<const char*, kCalls> kNames{"write",     "read",      "poll",    "tcdrain",       "ioctl",
                                                 "tcgetattr", "tcsetattr", "tcflush", "clock_gettime", "malloc"};
using Counts = std::array<long, kCalls>;
Counts counts{};

template <typename Function>
Function next(Call call, Function /*like*/) {
    static std::array<void*, kCalls> found{};
    ++counts[call];
    if (found[call] == nullptr) { found[call] = dlsym(RTLD_NEXT, kNames[call]); }
    return reinterpret_cast<Function>(found[call]);
}

}  // namespace

// NOLINTBEGIN(readability-identifier-naming,readability-inconsistent-declaration-parameter-name): they are libc's
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);

ssize_t write(int fd, const void* bytes, size_t size) { return next(kWrite, write)(fd, bytes, size); }
ssize_t read(int fd, void* bytes, size_t size) { return next(kRead, read)(fd, bytes, size); }
int poll(pollfd* polled, nfds_t size, int limit) { return next(kPoll, poll)(polled, size, limit); }
int tcdrain(int fd) { return next(kTcdrain, tcdrain)(fd); }
int ioctl(int fd, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    return next(kIoctl, ioctl)(fd, request, argument);
}
int tcgetattr(int fd, termios* out) noexcept { return next(kTcgetattr, tcgetattr)(fd, out); }
int tcsetattr(int fd, int when, const termios* in) noexcept { return next(kTcsetattr, tcsetattr)(fd, when, in); }
int tcflush(int fd, int queue) noexcept { return next(kTcflush, tcflush)(fd, queue); }
int clock_gettime(clockid_t clock, timespec* out) noexcept { return next(kClockGettime, clock_gettime)(clock, out); }
// All that takes memory counts as one. dlsym() does, too.
void* malloc(size_t size) noexcept {
    ++counts[kMalloc];
    return __libc_malloc(size);
}
void* calloc(size_t count, size_t size) noexcept {
    ++counts[kMalloc];
    return __libc_calloc(count, size);
}
void* realloc(void* memory, size_t size) noexcept {
    ++counts[kMalloc];
    return __libc_realloc(memory, size);
}
}
// NOLINTEND(readability-identifier-naming,readability-inconsistent-declaration-parameter-name)

namespace {

using namespace quorvel::bench;

// The first exchange may take what later ones keep.
std::array<double, kCalls> count(const Exchange& exchange, Way way) {
    constexpr int kExchanges = 100;
    const Run run = open(exchange, way, std::make_shared<FarEnd>(exchange.traffic));
    run();
    const Counts before = counts;
    for (int i = 0; i < kExchanges; ++i) { run(); }
    const Counts after = counts;
    std::array<double, kCalls> mean{};
    for (size_t i = 0; i < kCalls; ++i) { mean[i] = static_cast<double>(after[i] - before[i]) / kExchanges; }
    return mean;
}

void print(const std::string& name, const std::array<double, kCalls>& mean, bool last) {
    std::printf("\"%s\": {", name.c_str());
    for (size_t i = 0; i < kCalls; ++i) { std::printf("%s\"%s\": %.2f", i == 0 ? "" : ", ", kNames[i], mean[i]); }
    std::printf(last ? "}\n" : "},\n");
}

}  // namespace

int main() {
    std::printf("{\n");
    for (const Exchange& exchange : commands()) {
        for (const Way way : kWays) { print(exchange.name + "/" + name_of(way), count(exchange, way), false); }
    }
    constexpr size_t kParams = 33;
    print("GIX with 1 parameter/library", count(ask_for(1), Way::kLibrary), false);
    print("GIX with " + std::to_string(kParams) + " parameters/library", count(ask_for(kParams), Way::kLibrary), true);
    std::printf("}\n");
    return 0;
}
