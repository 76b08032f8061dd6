// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_MEMORY_LINE_H
#define QUORVEL_TESTS_SUPPORT_MEMORY_LINE_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <poll.h>
#include <set>
#include <string>
#include <string_view>

// A serial line in memory, on a clock of its own that only waits and calls move: nothing takes time, and nothing is
// left to chance. It stands in the place of the system's calls of programs that are linked with quorvel_memory_line().
namespace memory {

inline constexpr const char* kPath = "line in memory";

using Time = std::chrono::microseconds;

// What becomes of a call of the system: an errno, or one of these.
enum Fault : int { kShort = -1, kHangUp = -2 };

// While one lives, kPath can be opened; one at a time.
class Line {
public:
    // Hears each byte that the host sends.
    using Listener = std::function<void(uint8_t)>;

    Line();
    ~Line();
    Line(Line&&) = delete;

    // The far end: what it sends arrives at the line's speed, in one piece or byte by byte.
    void listen(Listener listener) { listener_ = std::move(listener); }
    void send(std::string_view bytes);
    void send_in_bytes(bool inBytes) { inBytes_ = inBytes; }
    // Once so many bytes more have gone either way.
    void hang_up_after(size_t bytes);

    // The n-th call from now on, counted from 1, comes to this; and all that follow, if it says so.
    void fail(size_t n, int fault, bool onwards = false);
    [[nodiscard]] bool failed() const { return calls_ >= failAt_; }
    // Calls as they should be, and nothing on its way; a port that hung up has to be opened again.
    void heal();

    [[nodiscard]] Time now() const { return now_; }
    // Since the last fail().
    [[nodiscard]] size_t calls() const { return calls_; }
    [[nodiscard]] size_t open_descriptors() const { return ports_.size() + wakers_.size(); }
    [[nodiscard]] bool hung_up() const { return hungUp_; }

    // What the system's calls come to.
    int open_port();
    int open_waker();
    [[nodiscard]] bool owns(int fd) const { return ports_.contains(fd) || wakers_.contains(fd); }
    [[nodiscard]] bool is_waker(int fd) const { return wakers_.contains(fd); }
    // Whether this one fails, errno being set. A signal can end only a call that may wait.
    bool fails(bool waits = false);
    int close(int fd);
    int wait(pollfd* waited, size_t count, int milliseconds);
    long read(void* to, size_t size);
    long write(const void* bytes, size_t size);
    void discard_input();
    [[nodiscard]] size_t arrived() const;
    void pass(Time time) { now_ += time; }

private:
    struct Piece {
        Time at;
        std::string bytes;
        size_t next = 0;
    };

    [[nodiscard]] short events_of(int fd) const;
    void count_traffic();

    Listener listener_;
    Time now_{std::chrono::hours(1)};
    std::deque<Piece> arriving_;
    bool inBytes_ = false;
    std::set<int> ports_;
    std::set<int> wakers_;
    int nextFd_ = 1 << 20;  // none of the system's
    size_t calls_ = 0;
    size_t failAt_ = SIZE_MAX;
    int fault_ = 0;
    bool onwards_ = false;
    bool short_ = false;
    size_t trafficLeft_ = SIZE_MAX;
    bool hungUp_ = false;
};

}  // namespace memory

#endif
