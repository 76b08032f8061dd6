// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WEB_CONNECTION_H
#define QUORVEL_SIMULATOR_WEB_CONNECTION_H

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <httplib.h>
#include <mutex>
#include <set>
#include <string>

namespace quorvel::sim::web {

// A browser's connection for one request, which has to be there within ten seconds and in 128 KiB; a browser that takes
// nothing of the answer for five seconds has gone.
class Connection : public httplib::Stream {
public:
    // `hurry` is set when the program ends: then nobody is waited for any more.
    Connection(int socket, const std::atomic<bool>& hurry) : socket_(socket), hurry_(hurry) {}

    [[nodiscard]] bool is_readable() const override;
    // And whether anybody is there who reads.
    [[nodiscard]] bool is_writable() const override;
    // Negative when nothing more may come.
    ssize_t read(char* bytes, size_t size) override;
    ssize_t write(const char* bytes, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    [[nodiscard]] int socket() const override { return socket_; }

private:
    [[nodiscard]] bool await(short event, std::chrono::steady_clock::time_point deadline) const;

    const int socket_;
    const std::atomic<bool>& hurry_;
    const std::chrono::steady_clock::time_point deadline_ = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    std::array<char, 4096> buffer_{};
    size_t begin_ = 0;
    size_t end_ = 0;
    size_t count_ = 0;
};

// The web server's, by such connections.
class Server : public httplib::Server {
public:
    // Every connection ends; answers that are on their way are still sent.
    void hang_up();
    // So many may wait for their turn that all that a page loads does.
    void widen_queue();

private:
    bool process_and_close_socket(int socket) override;

    std::mutex mutex_;
    std::set<int> sockets_;
    std::atomic<bool> hurry_{false};
};

}  // namespace quorvel::sim::web

#endif
