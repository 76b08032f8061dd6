// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_CORE_LINE_H
#define QUORVEL_TESTS_CORE_LINE_H

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

// A pseudo-terminal, seen from the far side.
class Line {
public:
    Line() {
        std::array<char, 64> name{};
        if (openpty(&far_, &near_, nullptr, nullptr, nullptr) != 0 || ttyname_r(near_, name.data(), name.size()) != 0) {
            throw std::runtime_error("openpty");
        }
        path_ = name.data();
        for (const int fd : {far_, near_}) { fcntl(fd, F_SETFD, FD_CLOEXEC); }
    }
    ~Line() {
        hang_up();
        close(near_);
    }
    Line(Line&&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    // A descriptor of the near side, which keeps the settings alive.
    [[nodiscard]] int near_side() const { return near_; }

    [[nodiscard]] termios settings() const {
        termios current{};
        EXPECT_EQ(tcgetattr(near_, &current), 0);
        return current;
    }

    // Sends and waits until the near side can read as much: it takes the kernel a moment.
    void feed(std::string_view bytes) const {
        int before = 0;
        ioctl(near_, FIONREAD, &before);
        send(bytes);
        for (int now = 0; now < before + static_cast<int>(bytes.size()); ioctl(near_, FIONREAD, &now)) { usleep(100); }
    }

    void send(std::string_view bytes) const {
        ASSERT_EQ(write(far_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    [[nodiscard]] std::string received(size_t length) const {
        std::string bytes;
        std::array<char, 4096> some{};
        while (bytes.size() < length) {
            pollfd input{far_, POLLIN, 0};
            if (poll(&input, 1, 20'000) != 1) { break; }
            const ssize_t count = read(far_, some.data(), std::min(some.size(), length - bytes.size()));
            if (count <= 0) { break; }
            bytes.append(some.data(), static_cast<size_t>(count));
        }
        return bytes;
    }

    [[nodiscard]] bool is_quiet() const {
        pollfd input{far_, POLLIN, 0};
        return poll(&input, 1, 0) == 0;
    }

    void hang_up() {
        if (far_ >= 0) { close(far_); }
        far_ = -1;
    }

private:
    int far_ = -1;
    int near_ = -1;
    std::string path_;
};

#endif
