// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/line/line.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

#include "simulator/line/holders.h"

namespace quorvel::sim {

namespace {

// How long a client may leave the line full before what it does not read is dropped.
constexpr int kPatienceMs = 1000;

// Before any client sets the line up for itself it must neither echo nor translate.
void make_raw(int slave) {
    termios settings{};
    if (tcgetattr(slave, &settings) != 0) { fail_call("tcgetattr"); }
    cfmakeraw(&settings);
    if (tcsetattr(slave, TCSANOW, &settings) != 0) { fail_call("tcsetattr"); }
}

}  // namespace

Line::Terminal::Terminal(bool watched)
    : master(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC), "posix_openpt"),
      path(slave_path(master)),
      slave(::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC), "open") {
    make_raw(slave.get());
    const int events = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (events < 0 && !watched) { return; }
    visits.emplace(events, "inotify_init1");
    if (::inotify_add_watch(visits->get(), path.c_str(), IN_OPEN | IN_CLOSE) < 0) { fail_call("inotify_add_watch"); }
}

Line::Line(bool watched) : watched_(watched) { open(); }

void Line::open() {
    holders_ = 0;
    terminal_.emplace(watched_);
}

Line::Event Line::wait(std::optional<std::chrono::milliseconds> limit, bool wanted) {
    // poll() passes over descriptors below 0.
    const int master = wanted && terminal_ ? terminal_->master.get() : -1;
    const int visits = terminal_ && terminal_->visits ? terminal_->visits->get() : -1;
    std::array<pollfd, 3> polled{
        {{master, POLLIN, 0}, {wakeUp_.get(), POLLIN, 0}, {visits, POLLIN, 0}},
    };
    const int ready = ::poll(polled.data(), polled.size(), limit ? static_cast<int>(limit->count()) : -1);
    if (ready < 0 && errno != EINTR) { fail_call("poll"); }
    if (ready == 0) { return Event::kTimedOut; }
    if (ready > 0 && polled[2].revents != 0) { see_departures(); }
    if (ready < 0 || polled[1].revents != 0) {
        wakeUp_.clear();
        return Event::kWoken;
    }
    return polled[0].revents != 0 ? Event::kReadable : Event::kWoken;
}

// Of several alike that come at once the system tells one, so whoever seems to be left is looked for.
void Line::see_departures() {
    std::array<char, 4096> events{};
    const ssize_t count = ::read(terminal_->visits->get(), events.data(), events.size());
    for (ssize_t at = 0; at < count;) {
        inotify_event event{};
        std::memcpy(&event, events.data() + at, sizeof event);
        at += static_cast<ssize_t>(sizeof event + event.len);
        if ((event.mask & IN_OPEN) != 0) { ++holders_; }
        if ((event.mask & IN_CLOSE) == 0) { continue; }
        holders_ -= std::min<size_t>(holders_, 1);
        if (holders_ != 0 && !is_held(terminal_->path, terminal_->slave.get())) { holders_ = 0; }
        departed_ |= holders_ == 0;
    }
    // Whoever had it for himself is gone, killed perhaps. The PIN pad's own end would keep others out for ever.
    if (departed_ && holders_ == 0) { ::ioctl(terminal_->slave.get(), TIOCNXCL); }
}

Bytes Line::read() {
    Bytes bytes(4096);
    const ssize_t count = ::read(terminal_->master.get(), bytes.data(), bytes.size());
    if (count < 0 && !is_transient(errno)) { fail_call("read"); }
    bytes.resize(count > 0 ? static_cast<size_t>(count) : 0);
    return bytes;
}

bool Line::write(ByteView bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(terminal_->master.get(), bytes.data(), bytes.size());
        if (count >= 0) {
            bytes = bytes.subspan(static_cast<size_t>(count));
        } else if (!is_transient(errno)) {
            fail_call("write");
        } else if (!await_room()) {
            ::tcflush(terminal_->slave.get(), TCIFLUSH);
            return false;
        }
    }
    return true;
}

// Someone who wants to stop the PIN pad is not made to wait for a client that does not read.
bool Line::await_room() const {
    std::array<pollfd, 2> polled{pollfd{terminal_->master.get(), POLLOUT, 0}, pollfd{wakeUp_.get(), POLLIN, 0}};
    const int ready = ::poll(polled.data(), polled.size(), kPatienceMs);
    if (ready < 0) { return errno == EINTR; }
    return ready > 0 && polled[1].revents == 0;
}

}  // namespace quorvel::sim
