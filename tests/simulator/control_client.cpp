// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/simulator/control_client.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// Only a failing test waits that long.
constexpr int patienceMs = 5000;

bool await(int socket, short event, int limitMs) {
    pollfd polled{socket, event, 0};
    return poll(&polled, 1, limitMs) > 0;
}

}  // namespace

ControlClient::ControlClient(const std::string& path) : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0) << path;
}

ControlClient::~ControlClient() { close(socket_); }

void ControlClient::send(std::string_view bytes) {
    ASSERT_EQ(::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
}

size_t ControlClient::send_what_goes(std::string_view bytes) {
    size_t sent = 0;
    while (sent < bytes.size() && await(socket_, POLLOUT, 300)) {
        const ssize_t count = ::send(socket_, bytes.data() + sent, bytes.size() - sent, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (count > 0) sent += static_cast<size_t>(count);
    }
    return sent;
}

void ControlClient::shut_down_sending() { shutdown(socket_, SHUT_WR); }

std::string ControlClient::line() {
    std::string line;
    for (char c = 0; await(socket_, POLLIN, patienceMs) && read(socket_, &c, 1) == 1 && c != '\n';) line.push_back(c);
    return line;
}
