// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/web/connection.h"

#include <algorithm>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quorvel::sim::web {

namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t kMostBytes = size_t{128} << 10U;
constexpr auto kPatience = std::chrono::seconds(5);
// Between two looks at whether the program ends.
constexpr auto kLook = std::chrono::milliseconds(100);

}  // namespace

bool Connection::await(short event, Clock::time_point deadline) const {
    while (!hurry_) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left <= left.zero()) { return false; }
        pollfd polled{socket_, event, 0};
        if (::poll(&polled, 1, static_cast<int>(std::min<std::chrono::milliseconds>(left, kLook).count())) > 0) {
            return true;
        }
    }
    pollfd polled{socket_, event, 0};
    return ::poll(&polled, 1, 0) > 0;
}

bool Connection::is_readable() const { return begin_ != end_ || await(POLLIN, deadline_); }

bool Connection::is_writable() const {
    char next = 0;
    if (::recv(socket_, &next, 1, MSG_PEEK | MSG_DONTWAIT) == 0) { return false; }
    pollfd polled{socket_, POLLOUT, 0};
    return ::poll(&polled, 1, 0) > 0 && (polled.revents & (POLLERR | POLLHUP)) == 0;
}

ssize_t Connection::read(char* bytes, size_t size) {
    if (begin_ == end_) {
        if (count_ >= kMostBytes || hurry_ || !await(POLLIN, deadline_)) { return -1; }
        const ssize_t count = ::recv(socket_, buffer_.data(), buffer_.size(), MSG_DONTWAIT);
        if (count <= 0) { return count; }
        begin_ = 0;
        end_ = static_cast<size_t>(count);
        count_ += end_;
    }
    const size_t count = std::min(size, end_ - begin_);
    std::memcpy(bytes, buffer_.data() + begin_, count);
    begin_ += count;
    return static_cast<ssize_t>(count);
}

ssize_t Connection::write(const char* bytes, size_t size) {
    if (!await(POLLOUT, Clock::now() + kPatience)) { return -1; }
    return ::send(socket_, bytes, size, MSG_DONTWAIT | MSG_NOSIGNAL);
}

void Connection::get_remote_ip_and_port(std::string& /*ip*/, int& /*port*/) const {}
void Connection::get_local_ip_and_port(std::string& /*ip*/, int& /*port*/) const {}

bool Server::process_and_close_socket(int socket) {
    {
        const std::lock_guard lock(mutex_);
        sockets_.insert(socket);
    }
    Connection connection(socket, hurry_);
    bool closed = false;
    // Nothing here needs ranges, by which one request could have a file many times.
    const auto arrange = [](httplib::Request& request) { request.ranges.clear(); };
    // Newer versions of cpp-httplib want the addresses, too, which nothing here asks for.
    const auto process = [&](auto& stream) {
        if constexpr (requires { this->process_request(stream, true, closed, arrange); }) {
            return this->process_request(stream, true, closed, arrange);
        } else {
            return this->process_request(stream, "", 0, "", 0, true, closed, arrange);
        }
    };
    const bool done = process(connection);
    const std::lock_guard lock(mutex_);
    sockets_.erase(socket);
    ::shutdown(socket, SHUT_RDWR);
    ::close(socket);
    return done;
}

void Server::hang_up() {
    const std::lock_guard lock(mutex_);
    hurry_ = true;
    for (const int socket : sockets_) { ::shutdown(socket, SHUT_RD); }
}

void Server::widen_queue() { ::listen(svr_sock_, SOMAXCONN); }

}  // namespace quorvel::sim::web
