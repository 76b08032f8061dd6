// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "bench/pin_pad.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "wire/frame.h"

namespace quorvel::bench {

namespace {

void send(int master, const void* bytes, size_t size) {
    if (write(master, bytes, size) != static_cast<ssize_t>(size)) { _exit(1); }
}

[[noreturn]] void answer_for_ever(int master, size_t requestSize, const std::string& answer) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::array<char, 4096> bytes;
    for (size_t got = 0;;) {
        const ssize_t count = read(master, bytes.data(), bytes.size());
        if (count <= 0) { _exit(0); }
        if (got == 0 && bytes[0] == static_cast<char>(wire::control::kCan)) {
            send(master, &wire::control::kEot, 1);
            continue;
        }
        got += static_cast<size_t>(count);
        if (got < requestSize) { continue; }
        got = 0;
        send(master, answer.data(), answer.size());
    }
}

}  // namespace

PinPad::PinPad(size_t requestSize, const std::string& answer) {
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) { throw std::runtime_error("no pseudo-terminal"); }
    path_ = ptsname(master);
    slave_ = open(path_.c_str(), O_RDWR | O_NOCTTY);
    termios settings{};
    tcgetattr(slave_, &settings);
    cfmakeraw(&settings);
    tcsetattr(slave_, TCSANOW, &settings);
    child_ = fork();
    if (child_ == 0) { answer_for_ever(master, requestSize, answer); }
    close(master);
}

PinPad::~PinPad() {
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
    close(slave_);
}

}  // namespace quorvel::bench
