// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/support/peer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace support {

namespace {

using namespace std::chrono_literals;

// Longer than anything that the protocol makes a host wait for.
constexpr Peer::Duration kPatience = 30s;
// Once the host has nothing more to do, what it sent is already in the line.
constexpr Peer::Duration kGrace = 200ms;

[[noreturn]] void give_up(const char* call) {
    throw std::runtime_error(std::string(call) + ": " + std::strerror(errno));
}

void open_line(int* master, int* slave) {
    termios raw{};
    cfmakeraw(&raw);
    raw.c_cflag |= CREAD | CLOCAL;
    if (openpty(master, slave, nullptr, &raw, nullptr) != 0) { give_up("openpty"); }
    for (const int fd : {*master, *slave}) { fcntl(fd, F_SETFD, FD_CLOEXEC); }
    fcntl(*master, F_SETFL, O_NONBLOCK);
}

std::string difference(std::string_view expected, std::string_view received) {
    size_t at = 0;
    while (at < expected.size() && at < received.size() && expected[at] == received[at]) { ++at; }
    return "expected  " + to_hex(expected) + "\n  received  " + to_hex(received) + "\n            "
           + std::string(3 * at, ' ') + "^^ byte " + std::to_string(at);
}

}  // namespace

Peer::Peer() {
    open_line(&master_, &slave_);
    std::array<char, 64> name{};
    if (ptsname_r(master_, name.data(), name.size()) != 0) { give_up("ptsname_r"); }
    path_ = name.data();
    finish_ = eventfd(0, EFD_CLOEXEC);
    if (finish_ < 0) { give_up("eventfd"); }
    // Signals that a test sends are for the host's thread.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before);
    thread_ = std::thread([this] { play(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

Peer::~Peer() {
    finish();
    close_master();
    close(slave_);
    close(finish_);
}

termios Peer::settings() const {
    termios current{};
    if (tcgetattr(slave_, &current) != 0) { give_up("tcgetattr"); }
    return current;
}

Peer& Peer::expect(std::string bytes, Where where) {
    return add([bytes = std::move(bytes), where](Peer& peer) { peer.match(bytes, where); });
}

Peer& Peer::send(std::string bytes, Where where) {
    return add([bytes = std::move(bytes), where](Peer& peer) { peer.write(bytes, where); });
}

Peer& Peer::wait(Duration time) {
    return add([time](Peer&) { std::this_thread::sleep_for(time); });
}

Peer& Peer::expect_silence(Duration time, Where where) {
    return add([time, where](Peer& peer) {
        if (peer.ready(POLLIN, time)) {
            peer.fail(where, "expected silence, received " + to_hex(peer.read_waiting(64)));
        }
    });
}

Peer& Peer::discard(size_t count, Where where) {
    return reply(
        count, [](const std::string&) { return ""; }, where);
}

Peer& Peer::reply(size_t count, std::function<std::string(const std::string&)> answer, Where where) {
    return add([count, answer = std::move(answer), where](Peer& peer) {
        peer.write(answer(peer.take(count, where, "more to be answered")), where);
    });
}

Peer& Peer::hang_up() {
    return add([](Peer& peer) { peer.close_master(); });
}

Peer& Peer::request(std::string_view payload, Where where) { return expect(frame(payload), where).send("\x06", where); }

Peer& Peer::any_request(Where where) {
    return add([where](Peer& peer) {
        while (peer.take(1, where, "the end of a request") != "\x17") {}
        peer.take(2, where, "the check of a request");
        peer.write("\x06", where);
    });
}

Peer& Peer::response(std::string_view payload, Where where) { return send(frame(payload), where); }

Peer& Peer::accept_can(Where where) { return expect("\x18", where).send("\x04", where); }

void Peer::settle() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return steps_.empty() && !playing_; });
}

void Peer::finish() {
    if (!thread_.joinable()) { return; }
    {
        const std::lock_guard lock(mutex_);
        finished_ = true;
    }
    changed_.notify_all();
    eventfd_write(finish_, 1);
    thread_.join();
    if (!failure_.empty()) { ADD_FAILURE_AT(failedAt_.file, failedAt_.line) << "the peer: " << failure_; }
}

Peer& Peer::add(Step step) {
    {
        const std::lock_guard lock(mutex_);
        steps_.push_back(std::move(step));
    }
    changed_.notify_all();
    return *this;
}

void Peer::play() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return finished_ || !steps_.empty(); });
        if (steps_.empty()) { break; }
        const Step step = std::move(steps_.front());
        steps_.pop_front();
        playing_ = true;
        lock.unlock();
        try {
            if (failure_.empty()) { step(*this); }
        } catch (const Failed&) { close_master(); }
        lock.lock();
        playing_ = false;
        changed_.notify_all();
    }
    lock.unlock();
    report_rest();
}

void Peer::fail(const Where& where, const std::string& text) {
    failure_ = text;
    failedAt_ = where;
    throw Failed{};
}

// Byte by byte, so that the first wrong one is reported at once and with all that came with it.
void Peer::match(const std::string& expected, const Where& where) {
    std::string received;
    while (received.size() < expected.size()) {
        received += read_some(expected.size() - received.size(), where, difference(expected, received));
        if (!expected.starts_with(received)) { fail(where, difference(expected, received + read_waiting(64))); }
    }
}

std::string Peer::take(size_t count, const Where& where, const std::string& what) {
    std::string received;
    while (received.size() < count) { received += read_some(count - received.size(), where, what); }
    return received;
}

void Peer::write(std::string_view bytes, const Where& where) {
    while (!bytes.empty()) {
        await(POLLOUT, where, "the host does not read");
        const ssize_t count = ::write(master_, bytes.data(), bytes.size());
        if (count > 0) { bytes.remove_prefix(static_cast<size_t>(count)); }
    }
}

void Peer::await(short events, const Where& where, const std::string& what) {
    if (master_ < 0) { fail(where, "the line is already hung up"); }
    if (!ready(events, kPatience)) { fail(where, what); }
}

// Finishing the script cuts the wait short.
bool Peer::ready(short events, Duration time) {
    std::array<pollfd, 2> fds{{{master_, events, 0}, {finish_, POLLIN, 0}}};
    const Clock::time_point end = Clock::now() + time;
    nfds_t watched = fds.size();
    Duration left = time;
    while (poll(fds.data(), watched, static_cast<int>(left.count())) > 0) {
        if (fds[0].revents != 0) { return true; }
        watched = 1;
        left = std::min(kGrace, std::chrono::duration_cast<Duration>(end - Clock::now()));
        left = std::max(left, Duration::zero());
    }
    return false;
}

std::string Peer::read_waiting(size_t limit) {
    std::string bytes(limit, '\0');
    const ssize_t count = ::read(master_, bytes.data(), bytes.size());
    bytes.resize(count > 0 ? static_cast<size_t>(count) : 0);
    return bytes;
}

std::string Peer::read_some(size_t limit, const Where& where, const std::string& what) {
    await(POLLIN, where, "nothing more came\n  " + what);
    std::string bytes = read_waiting(limit);
    if (bytes.empty()) { fail(where, "the line cannot be read: " + std::string(std::strerror(errno))); }
    return bytes;
}

void Peer::report_rest() {
    if (!failure_.empty() || master_ < 0) { return; }
    const std::string rest = read_waiting(4096);
    if (!rest.empty()) { failure_ = "the host sent more than the script expects: " + to_hex(rest); }
}

void Peer::close_master() {
    if (master_ >= 0) { close(master_); }
    master_ = -1;
}

}  // namespace support
