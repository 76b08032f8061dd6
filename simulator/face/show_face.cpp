// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <exception>
#include <poll.h>
#include <thread>

#include "simulator/face/face.h"
#include "simulator/face/terminal.h"

namespace quorvel::sim {

namespace {

std::atomic<bool> ended{false};
std::atomic<bool> resized{false};
const WakeUp* woken = nullptr;

static_assert(std::atomic<bool>::is_always_lock_free, "the signal handlers set it");

// While one lives, signals are noticed in the loop, as the terminal must not be touched in a handler.
class NoticeSignals {
public:
    explicit NoticeSignals(const WakeUp& wakeUp) {
        ended = resized = false;
        woken = &wakeUp;
        for (const int signal : kEnds) {
            handle(signal, [](int) { notice(ended); });
        }
        handle(SIGWINCH, [](int) { notice(resized); });
    }
    // The program ends now, and a second signal must not keep it from leaving the terminal as it was.
    ~NoticeSignals() {
        for (const int signal : kEnds) { handle(signal, SIG_IGN); }
        handle(SIGWINCH, SIG_IGN);
    }
    NoticeSignals(const NoticeSignals&) = delete;
    NoticeSignals& operator=(const NoticeSignals&) = delete;

private:
    static constexpr std::array kEnds{SIGINT, SIGTERM, SIGHUP};

    static void notice(std::atomic<bool>& what) {
        what = true;
        woken->wake();
    }

    static void handle(int signal, void (*handler)(int)) {
        struct sigaction action = {};
        action.sa_handler = handler;
        sigaction(signal, &action, nullptr);
    }
};

// False when the terminal has gone.
bool wait(const Terminal& terminal, const WakeUp& wakeUp) {
    std::array<pollfd, 2> polled{pollfd{terminal.input(), POLLIN, 0}, pollfd{wakeUp.get(), POLLIN, 0}};
    if (::poll(polled.data(), polled.size(), -1) < 0 && errno != EINTR) { fail_call("poll"); }
    wakeUp.clear();
    return (polled[0].revents & (POLLHUP | POLLERR | POLLNVAL)) == 0;
}

// Plays the PIN pad on a thread of its own; somebody else may end that too.
class Playing {
public:
    Playing(PinPad& pinPad, const WakeUp& wakeUp)
        : pinPad_(pinPad), thread_([this, &wakeUp] {
              try {
                  pinPad_.run();
              } catch (...) { failure_ = std::current_exception(); }
              over_ = true;
              wakeUp.wake();
          }) {}
    ~Playing() { join(); }
    Playing(const Playing&) = delete;
    Playing& operator=(const Playing&) = delete;

    [[nodiscard]] bool is_over() const noexcept { return over_; }

    // Throws what run() has thrown.
    void end() {
        join();
        if (failure_) { std::rethrow_exception(failure_); }
    }

private:
    void join() {
        pinPad_.request_stop();
        if (thread_.joinable()) { thread_.join(); }
    }

    PinPad& pinPad_;
    std::exception_ptr failure_;
    std::atomic<bool> over_{false};
    std::thread thread_;
};

}  // namespace

void show_face(PinPad& pinPad, const Cards& cards, const Feed& feed, const std::function<void()>& ready,
               const std::string& greeting) {
    Face face(pinPad, cards, feed);
    face.greet(greeting);
    const NoticeSignals noticeSignals(feed.wake_up());
    Terminal terminal;
    Playing playing(pinPad, feed.wake_up());
    ready();
    bool there = true;
    while (there && !ended && !face.is_over() && !playing.is_over()) {
        if (resized.exchange(false)) { terminal.resize(); }
        terminal.draw(paint(face.view(terminal.size().rows), terminal.size()));
        there = wait(terminal, feed.wake_up());
        while (const auto key = terminal.key()) {
            if (const auto deed = deed_of(*key)) { face.perform(*deed); }
        }
    }
    playing.end();
}

}  // namespace quorvel::sim
