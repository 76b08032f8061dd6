// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/simulator/host.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

namespace {

// Only a failing test waits that long.
constexpr int patienceMs = 5000;

bool await(int descriptor, short event, int limitMs) {
    pollfd polled{descriptor, event, 0};
    return poll(&polled, 1, limitMs) > 0;
}

}  // namespace

Host::Host(const std::string& path) : descriptor_(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    EXPECT_GE(descriptor_, 0) << path;
}

Host::~Host() { close(descriptor_); }

void Host::send(std::string_view bytes) {
    ASSERT_EQ(write(descriptor_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

std::string Host::receive(size_t count) {
    std::string bytes;
    while (bytes.size() < count && await(descriptor_, POLLIN, patienceMs)) {
        std::string some(count - bytes.size(), '\0');
        const ssize_t got = read(descriptor_, some.data(), some.size());
        if (got <= 0) break;
        bytes.append(some, 0, static_cast<size_t>(got));
    }
    return bytes;
}

void Host::flood(std::string_view bytes) {
    while (await(descriptor_, POLLOUT, 100) && write(descriptor_, bytes.data(), bytes.size()) > 0) {}
}
