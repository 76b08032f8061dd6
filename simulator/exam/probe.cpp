// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/exam/probe.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "wire/frame.h"

namespace quorvel::sim::exam {

namespace {

using Clock = std::chrono::steady_clock;

// Longer than the PIN pad waits for the rest of a frame.
constexpr std::chrono::milliseconds kPatience{1500};
constexpr int kTries = 3;

}  // namespace

Probe::Probe(const std::string& port)
    : port_(::open(port.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC), "open") {}

void Probe::send(ByteView bytes) const { static_cast<void>(!::write(port_.get(), bytes.data(), bytes.size())); }

void Probe::send_command(std::string_view packet) const { send(wire::encode({.data = to_bytes(packet)})); }

bool Probe::hears(ByteView due, std::chrono::milliseconds limit) const {
    const auto deadline = Clock::now() + limit;
    Bytes heard;
    while (std::search(heard.begin(), heard.end(), due.begin(), due.end()) == heard.end()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd polled{port_.get(), POLLIN, 0};
        if (left.count() <= 0 || ::poll(&polled, 1, static_cast<int>(left.count())) <= 0) { return false; }
        std::array<uint8_t, 4096> bytes{};
        const ssize_t count = ::read(port_.get(), bytes.data(), bytes.size());
        if (count <= 0) { return false; }
        heard.insert(heard.end(), bytes.begin(), bytes.begin() + count);
    }
    return true;
}

// The first one may end half a frame only.
bool Probe::cancels() const {
    for (int i = 0; i < kTries; ++i) {
        send(Bytes{wire::control::kCan});
        if (hears(Bytes{wire::control::kEot}, kPatience)) { return true; }
    }
    return false;
}

bool Probe::opens_session() const {
    send_command("OPN");
    return hears(wire::encode({.data = to_bytes("OPN000")}), kPatience);
}

void Probe::lock() const {
    ::flock(port_.get(), LOCK_EX | LOCK_NB);
    ::ioctl(port_.get(), TIOCEXCL);
}

std::string Probe::lock_left() const {
    int exclusive = 0;
    if (::ioctl(port_.get(), TIOCGEXCL, &exclusive) == 0 && exclusive != 0) { return "TIOCEXCL"; }
    if (::flock(port_.get(), LOCK_EX | LOCK_NB) != 0) { return "flock"; }
    ::flock(port_.get(), LOCK_UN);
    return "";
}

}  // namespace quorvel::sim::exam
