// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "bench/far_end.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "wire/frame.h"

namespace quorvel::bench {

namespace {

using Clock = std::chrono::steady_clock;
namespace control = wire::control;

void send(int master, const void* bytes, size_t size) {
    if (write(master, bytes, size) != static_cast<ssize_t>(size)) { give_up("far end: write"); }
}

// What one line has heard of its request.
class Ear {
public:
    Ear(int master, const Traffic& traffic) : master_(master), traffic_(traffic) {}

    // Returns the number of bytes that came; once they complete the request, has_all() is true until the next time.
    size_t listen() {
        std::array<char, 4096> bytes;
        const ssize_t count = read(master_, bytes.data(), bytes.size());
        if (count <= 0) { _exit(0); }
        if (has_all()) { heard_.clear(); }
        heard_.append(bytes.data(), static_cast<size_t>(count));
        if (heard_ == std::string(1, static_cast<char>(control::kCan))) {
            heard_.clear();
            send(master_, &control::kEot, 1);
        }
        if (has_all() && heard_ != traffic_.request) { give_up("far end: not the request that was expected"); }
        return static_cast<size_t>(count);
    }

    [[nodiscard]] bool has_all() const { return heard_.size() >= traffic_.request.size(); }

private:
    int master_;
    const Traffic& traffic_;
    std::string heard_;
};

[[noreturn]] void answer_at_once(int master, const Traffic& traffic) {
    const OnOneProcessor here(OnOneProcessor::End::kFar);
    for (Ear ear(master, traffic);;) {
        ear.listen();
        if (ear.has_all()) { send(master, traffic.answer.data(), traffic.answer.size()); }
    }
}

// A line on which each byte takes its time: the answer begins when the last byte of the request would have arrived.
class PacedLine {
public:
    PacedLine(int master, const Traffic& traffic, Clock::duration byteTime)
        : master_(master), answer_(traffic.answer), byteTime_(byteTime), ear_(master, traffic) {}

    void listen() {
        const Clock::time_point now = Clock::now();
        free_ = std::max(now, free_) + byteTime_ * ear_.listen();
        if (ear_.has_all()) { left_ = answer_.size(); }
    }

    [[nodiscard]] Clock::time_point due() const { return left_ == 0 ? Clock::time_point::max() : free_ + byteTime_; }

    void say(Clock::time_point now) {
        size_t count = 0;
        for (; due() <= now; --left_, ++count) { free_ += byteTime_; }
        if (count > 0) { send(master_, answer_.data() + answer_.size() - left_ - count, count); }
    }

private:
    int master_;
    const std::string& answer_;
    Clock::duration byteTime_;
    Ear ear_;
    Clock::time_point free_{};
    size_t left_ = 0;
};

void wait(std::vector<pollfd>& polled, Clock::time_point due) {
    const std::chrono::nanoseconds time = std::max(due - Clock::now(), Clock::duration::zero());
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    const timespec limit{seconds.count(), (time - seconds).count()};
    if (ppoll(polled.data(), polled.size(), due == Clock::time_point::max() ? nullptr : &limit, nullptr) < 0) {
        give_up("far end: ppoll");
    }
}

[[noreturn]] void answer_in_time(std::vector<pollfd> polled, const Traffic& traffic, Clock::duration byteTime) {
    prctl(PR_SET_TIMERSLACK, 1);
    std::vector<PacedLine> lines;
    lines.reserve(polled.size());
    for (const pollfd& each : polled) { lines.emplace_back(each.fd, traffic, byteTime); }
    for (;;) {
        wait(polled, std::ranges::min_element(lines, {}, &PacedLine::due)->due());
        for (size_t i = 0; i < lines.size(); ++i) {
            if (polled[i].revents != 0) { lines[i].listen(); }
            lines[i].say(Clock::now());
        }
    }
}

}  // namespace

void give_up(const std::string& what) {
    std::perror(what.c_str());
    _exit(1);
}

OnOneProcessor::OnOneProcessor(End end) {
    if (sched_getaffinity(0, sizeof before_, &before_) != 0) { give_up("sched_getaffinity"); }
    size_t chosen = CPU_SETSIZE;
    for (size_t i = 0; i < CPU_SETSIZE && (chosen == CPU_SETSIZE || end == End::kFar); ++i) {
        if (CPU_ISSET(i, &before_)) { chosen = i; }
    }
    cpu_set_t one{};
    CPU_SET(chosen, &one);
    if (sched_setaffinity(0, sizeof one, &one) != 0) { give_up("sched_setaffinity"); }
}

OnOneProcessor::~OnOneProcessor() { sched_setaffinity(0, sizeof before_, &before_); }

FarEnd::Line::Line() : master(posix_openpt(O_RDWR | O_NOCTTY)) {
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) { give_up("no pseudo-terminal"); }
    path = ptsname(master);
    slave = open(path.c_str(), O_RDWR | O_NOCTTY);
    termios settings{};
    tcgetattr(slave, &settings);
    cfmakeraw(&settings);
    tcsetattr(slave, TCSANOW, &settings);
}

template <typename Answer>
void FarEnd::answer_by(Answer&& answer) {
    child_ = fork();
    if (child_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        answer();
    }
    for (const Line& line : lines_) { close(line.master); }
}

FarEnd::FarEnd(const Traffic& traffic) : lines_(1) {
    answer_by([&] { answer_at_once(lines_.front().master, traffic); });
}

FarEnd::FarEnd(const Traffic& traffic, std::chrono::nanoseconds byteTime, size_t lines) : lines_(lines) {
    std::vector<pollfd> masters;
    for (const Line& line : lines_) { masters.push_back({line.master, POLLIN, 0}); }
    answer_by([&] { answer_in_time(masters, traffic, byteTime); });
}

FarEnd::~FarEnd() {
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
    for (const Line& line : lines_) { close(line.slave); }
}

}  // namespace quorvel::bench
