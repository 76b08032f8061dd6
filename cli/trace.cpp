// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/trace.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <span>
#include <termios.h>
#include <unistd.h>

#include "cli/words.h"

namespace quorvel::cli {

namespace {

// As the library sets a port up: 19200 baud, 8 data bits, no parity, nothing translated.
void make_raw(int descriptor) {
    termios settings{};
    if (tcgetattr(descriptor, &settings) != 0) { wire::fail_call("tcgetattr"); }
    cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    cfsetispeed(&settings, B19200);
    cfsetospeed(&settings, B19200);
    if (tcsetattr(descriptor, TCSANOW, &settings) != 0) { wire::fail_call("tcsetattr"); }
}

// What came from one side, given to the other.
class Direction {
public:
    Direction(int from, int to, wire::Sender sender, Output& output)
        : from_(from), to_(to), sender_(sender), output_(output) {}

    // False when the line is gone.
    bool pass() {
        std::array<uint8_t, 1024> bytes{};
        const ssize_t count = read(from_, bytes.data(), bytes.size());
        if (count <= 0) { return count < 0 && (errno == EAGAIN || errno == EINTR); }
        const auto received = std::span(bytes).first(static_cast<size_t>(count));
        // Told first: an answer must not overtake its question.
        for (const uint8_t byte : received) { tell(decoder_.feed(byte)); }
        return forward(received);
    }

private:
    void tell(const std::optional<wire::Reception>& reception) {
        if (reception) { output_.trace(sender_ == wire::Sender::kHost ? '>' : '<', words(sender_, *reception)); }
    }

    [[nodiscard]] bool forward(std::span<const uint8_t> bytes) const {
        while (!bytes.empty()) {
            const ssize_t count = write(to_, bytes.data(), bytes.size());
            if (count > 0) { bytes = bytes.subspan(static_cast<size_t>(count)); }
            if (count < 0 && errno == EAGAIN) {
                pollfd room{to_, POLLOUT, 0};
                poll(&room, 1, 1000);
            } else if (count < 0 && errno != EINTR) {
                return false;
            }
        }
        return true;
    }

    int from_;
    int to_;
    wire::Sender sender_;
    Output& output_;
    wire::FrameDecoder decoder_;
};

}  // namespace

Tap::Tap(const std::string& port, Output& output)
    : port_(::open(port.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC), port.c_str()),
      master_(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC), "posix_openpt"),
      path_(wire::slave_path(master_)),
      slave_(::open(path_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC), path_.c_str()) {
    make_raw(port_.get());
    make_raw(slave_.get());
    // Signals are the main thread's.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    thread_ = std::thread([this, &output] { relay(output); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

Tap::~Tap() {
    stop_.wake();
    thread_.join();
}

void Tap::relay(Output& output) const {
    Direction out(master_.get(), port_.get(), wire::Sender::kHost, output);
    Direction in(port_.get(), master_.get(), wire::Sender::kPinPad, output);
    for (;;) {
        std::array<pollfd, 3> polled{pollfd{stop_.get(), POLLIN, 0}, pollfd{master_.get(), POLLIN, 0},
                                     pollfd{port_.get(), POLLIN, 0}};
        if (poll(polled.data(), polled.size(), -1) < 0 && errno != EINTR) { return; }
        if (polled[0].revents != 0) { return; }
        if (polled[1].revents != 0 && !out.pass()) { return; }
        if (polled[2].revents != 0 && !in.pass()) { return; }
    }
}

}  // namespace quorvel::cli
