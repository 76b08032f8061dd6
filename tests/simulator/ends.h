// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SIMULATOR_ENDS_H
#define QUORVEL_TESTS_SIMULATOR_ENDS_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

// The other end of a line or a socket, as bare as can be: what it sends and expects is spelled in the tests.
class End {
public:
    explicit End(int descriptor) : descriptor_(descriptor) {}
    ~End() { close(descriptor_); }
    End(End&&) = delete;

    void send(std::string_view bytes) {
        ASSERT_EQ(write(descriptor_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    // As much as goes out without anybody reading; how much that was.
    size_t send_what_goes(std::string_view bytes) {
        fcntl(descriptor_, F_SETFL, fcntl(descriptor_, F_GETFL) | O_NONBLOCK);
        size_t sent = 0;
        while (sent < bytes.size() && await(POLLOUT, 300)) {
            const ssize_t count = write(descriptor_, bytes.data() + sent, bytes.size() - sent);
            if (count > 0) { sent += static_cast<size_t>(count); }
        }
        return sent;
    }

    // The next `count` bytes, or fewer when they do not come.
    std::string receive(size_t count) {
        std::string bytes;
        for (char c = 0; bytes.size() < count && next(c);) { bytes.push_back(c); }
        return bytes;
    }

    // Whether the other end closes, whatever there is left to read.
    bool is_left() { return await(0, 20000); }

    // The next line; what there was of it when the connection ends first.
    std::string line() {
        std::string line;
        for (char c = 0; next(c) && c != '\n';) { line.push_back(c); }
        return line;
    }

protected:
    int descriptor_;

private:
    // Only a failing test waits that long.
    bool next(char& c) { return await(POLLIN, 20000) && read(descriptor_, &c, 1) == 1; }

    bool await(short event, int limitMs) {
        pollfd polled{descriptor_, event, 0};
        return poll(&polled, 1, limitMs) > 0;
    }
};

// The host's end of the line.
class Host : public End {
public:
    explicit Host(const std::string& path) : End(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        EXPECT_GE(descriptor_, 0) << path;
    }
};

inline sockaddr_un socket_address(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

// Someone on the control socket, who knows nothing of it but that lines go in and come out.
class ControlClient : public End {
public:
    explicit ControlClient(const std::string& path) : End(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const sockaddr_un address = socket_address(path);
        EXPECT_EQ(connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0) << path;
    }

    void shut_down_sending() { shutdown(descriptor_, SHUT_WR); }

    std::string ask(std::string_view request) {
        send(std::string(request) + "\n");
        return line();
    }
};

#endif
