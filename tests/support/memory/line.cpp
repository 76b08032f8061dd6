// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/support/memory/line.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <linux/serial.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/time.h>
#include <termios.h>
#include <tuple>
#include <utility>

namespace memory {

namespace {

using namespace std::chrono_literals;

Line* current = nullptr;

constexpr Time kByte{521};  // ten bits at 19200 baud
constexpr Time kCall{20};   // so that waiting for what does not come ends
constexpr size_t kMostCalls = 3'000'000;

// What no test could go on from.
[[noreturn]] void give_up(const char* why) {
    std::fprintf(stderr, "line in memory: %s\n", why);
    std::abort();
}

}  // namespace

Line::Line() {
    if (std::exchange(current, this) != nullptr) { give_up("there is one already"); }
}

Line::~Line() { current = nullptr; }

void Line::send(std::string_view bytes) {
    Time at = arriving_.empty() ? now_ : std::max(now_, arriving_.back().at);
    while (!bytes.empty()) {
        const std::string_view piece = bytes.substr(0, inBytes_ ? 1 : bytes.size());
        arriving_.push_back({at += kByte * piece.size(), std::string(piece)});
        bytes.remove_prefix(piece.size());
    }
}

void Line::hang_up_after(size_t bytes) {
    trafficLeft_ = bytes;
    hungUp_ = bytes == 0;
}

void Line::count_traffic() {
    if (trafficLeft_ != SIZE_MAX && trafficLeft_ != 0) { hungUp_ = --trafficLeft_ == 0; }
}

void Line::fail(size_t n, int fault, bool onwards) {
    calls_ = 0;
    std::tie(failAt_, fault_, onwards_) = std::tie(n, fault, onwards);
}

void Line::heal() {
    fail(SIZE_MAX, 0);
    hang_up_after(SIZE_MAX);
    arriving_.clear();
}

int Line::open_port() { return *ports_.insert(nextFd_++).first; }

int Line::open_waker() { return *wakers_.insert(nextFd_++).first; }

bool Line::fails(bool waits) {
    pass(kCall);
    if (++calls_ > kMostCalls) { give_up("the library calls the system for ever"); }
    short_ = false;
    if (calls_ < failAt_ || (calls_ > failAt_ && !onwards_) || (fault_ == EINTR && !waits)) { return false; }
    short_ = fault_ == kShort;
    hungUp_ = hungUp_ || fault_ == kHangUp;
    if (fault_ > 0) { errno = fault_; }
    return fault_ > 0;
}

int Line::close(int fd) {
    const bool failed = fails(true);
    ports_.erase(fd);
    wakers_.erase(fd);
    return failed ? -1 : 0;
}

size_t Line::arrived() const {
    size_t count = 0;
    for (const Piece& piece : arriving_) {
        if (piece.at > now_) { break; }
        count += piece.bytes.size() - piece.next;
    }
    return count;
}

short Line::events_of(int fd) const {
    if (!ports_.contains(fd)) { return 0; }
    if (hungUp_) { return POLLIN | POLLOUT | POLLERR | POLLHUP; }
    return static_cast<short>(POLLOUT | (arrived() != 0 ? POLLIN : 0));
}

int Line::wait(pollfd* waited, size_t count, int milliseconds) {
    if (fails(true)) { return -1; }
    const Time end = now_ + std::chrono::milliseconds(milliseconds);
    for (;;) {
        int ready = 0;
        for (pollfd* each = waited; each != waited + count; ++each) {
            const int asked = each->events | POLLERR | POLLHUP;
            each->revents = static_cast<short>(events_of(each->fd) & asked);
            ready += each->revents != 0 ? 1 : 0;
        }
        if (ready != 0) { return ready; }
        const bool comes = !arriving_.empty() && (milliseconds < 0 || arriving_.front().at <= end);
        if (!comes && milliseconds < 0) { give_up("the library waits for ever"); }
        if (!comes) { return now_ = end, 0; }
        now_ = arriving_.front().at;
    }
}

long Line::read(void* to, size_t size) {
    if (fails(true)) { return -1; }
    if (hungUp_) { return 0; }
    size_t count = std::min(short_ ? 1 : size, arrived());
    count = std::min(count, trafficLeft_);
    for (size_t i = 0; i < count; ++i) {
        Piece& piece = arriving_.front();
        static_cast<char*>(to)[i] = piece.bytes[piece.next++];
        if (piece.next == piece.bytes.size()) { arriving_.pop_front(); }
        count_traffic();
    }
    return static_cast<long>(count);
}

long Line::write(const void* bytes, size_t size) {
    if (fails(true)) { return -1; }
    if (hungUp_) { return errno = EIO, -1; }
    size_t count = 0;
    while (count < (short_ ? 1 : size) && !hungUp_) {
        pass(kByte);
        listener_(static_cast<const uint8_t*>(bytes)[count++]);
        count_traffic();
    }
    return static_cast<long>(count);
}

void Line::discard_input() {
    while (!arriving_.empty() && arriving_.front().at <= now_) { arriving_.pop_front(); }
}

namespace {

// A call on the terminal itself.
bool refused(bool waits = false) {
    if (current->fails(waits)) { return true; }
    if (!current->hung_up()) { return false; }
    return errno = EIO, true;
}

bool owns(int fd) { return current != nullptr && current->owns(fd); }

}  // namespace

}  // namespace memory

// In the place of the system's, by the linker's --wrap.
extern "C" {

using memory::current;

// NOLINTBEGIN(bugprone-reserved-identifier)
#define QUORVEL_WRAPS(result, name, ...) \
    result __real_##name(__VA_ARGS__);   \
    result __wrap_##name(__VA_ARGS__);   \
    result __wrap_##name(__VA_ARGS__)

QUORVEL_WRAPS(int, open, const char* path, int flags, int mode) {
    if (current == nullptr || std::strcmp(path, memory::kPath) != 0) { return __real_open(path, flags, mode); }
    return current->fails(true) ? -1 : current->open_port();
}

QUORVEL_WRAPS(int, close, int fd) { return memory::owns(fd) ? current->close(fd) : __real_close(fd); }

QUORVEL_WRAPS(ssize_t, read, int fd, void* to, size_t size) {
    return memory::owns(fd) ? current->read(to, size) : __real_read(fd, to, size);
}

QUORVEL_WRAPS(ssize_t, write, int fd, const void* bytes, size_t size) {
    return memory::owns(fd) ? current->write(bytes, size) : __real_write(fd, bytes, size);
}

QUORVEL_WRAPS(int, poll, pollfd* waited, nfds_t count, int milliseconds) {
    return memory::owns(waited->fd) ? current->wait(waited, count, milliseconds)
                                    : __real_poll(waited, count, milliseconds);
}

QUORVEL_WRAPS(int, tcdrain, int fd) { return memory::owns(fd) ? -int{memory::refused(true)} : __real_tcdrain(fd); }

QUORVEL_WRAPS(int, tcflush, int fd, int queues) {
    if (!memory::owns(fd)) { return __real_tcflush(fd, queues); }
    if (memory::refused()) { return -1; }
    if (queues != TCOFLUSH) { current->discard_input(); }
    return 0;
}

QUORVEL_WRAPS(int, tcgetattr, int fd, termios* settings) {
    if (!memory::owns(fd)) { return __real_tcgetattr(fd, settings); }
    *settings = {};
    return -int{memory::refused()};
}

QUORVEL_WRAPS(int, tcsetattr, int fd, int when, const termios* settings) {
    return memory::owns(fd) ? -int{memory::refused(true)} : __real_tcsetattr(fd, when, settings);
}

QUORVEL_WRAPS(int, ioctl, int fd, unsigned long request, void* argument) {
    if (!memory::owns(fd)) { return __real_ioctl(fd, request, argument); }
    if (memory::refused()) { return -1; }
    if (request == TIOCGSERIAL) { *static_cast<serial_struct*>(argument) = {}; }
    if (request == TIOCOUTQ) { *static_cast<int*>(argument) = 0; }
    if (request == FIONREAD) { *static_cast<int*>(argument) = static_cast<int>(current->arrived()); }
    return 0;
}

QUORVEL_WRAPS(int, fcntl, int fd, int what, int argument) {
    return memory::owns(fd) ? -int{current->fails()} : __real_fcntl(fd, what, argument);
}

QUORVEL_WRAPS(int, flock, int fd, int what) {
    return memory::owns(fd) ? -int{current->fails(true)} : __real_flock(fd, what);
}

QUORVEL_WRAPS(int, eventfd, unsigned value, int flags) {
    if (current == nullptr) { return __real_eventfd(value, flags); }
    return current->fails() ? -1 : current->open_waker();
}

QUORVEL_WRAPS(int, eventfd_read, int fd, uint64_t* value) {
    return memory::owns(fd) ? -1 : __real_eventfd_read(fd, value);
}

QUORVEL_WRAPS(int, clock_gettime, clockid_t clock, timespec* out) {
    if (current == nullptr) { return __real_clock_gettime(clock, out); }
    current->pass(memory::Time(1));
    const auto seconds = std::chrono::floor<std::chrono::seconds>(current->now());
    out->tv_sec = seconds.count();
    out->tv_nsec = static_cast<decltype(out->tv_nsec)>(std::chrono::nanoseconds(current->now() - seconds).count());
    return 0;
}

QUORVEL_WRAPS(int, gettimeofday, timeval* out, void* zone) {
    if (current == nullptr) { return __real_gettimeofday(out, zone); }
    const auto seconds = std::chrono::floor<std::chrono::seconds>(current->now());
    out->tv_sec = seconds.count();
    out->tv_usec = (current->now() - seconds).count();
    return 0;
}

QUORVEL_WRAPS(int, clock_nanosleep, clockid_t clock, int flags, const timespec* time, timespec* left) {
    if (current == nullptr) { return __real_clock_nanosleep(clock, flags, time, left); }
    const auto whole = std::chrono::seconds(time->tv_sec) + std::chrono::nanoseconds(time->tv_nsec);
    current->pass(std::chrono::ceil<memory::Time>(whole));
    return 0;
}

// NOLINTEND(bugprone-reserved-identifier)
}
