// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/control/control_server.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace quorvel::sim {

namespace fs = std::filesystem;

namespace {

constexpr size_t kMostClients = 32;

sockaddr_un address_of(const fs::path& path) {
    const std::string text = path.string();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (text.empty() || text.size() >= sizeof address.sun_path) {
        throw std::runtime_error(
            fmt::format("\"{}\" is no path for a socket: 1 to {} bytes", text, sizeof address.sun_path - 1));
    }
    text.copy(address.sun_path, text.size());
    return address;
}

const sockaddr* plain(const sockaddr_un& address) { return reinterpret_cast<const sockaddr*>(&address); }

int new_socket() { return ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0); }

void clear_way(const fs::path& path, const sockaddr_un& address) {
    const fs::file_status status = fs::symlink_status(path);
    if (!fs::exists(status)) { return; }
    if (!fs::is_socket(status)) { throw std::runtime_error(fmt::format("{} is there and no socket", path.string())); }
    const Descriptor probe(new_socket(), "socket");
    if (::connect(probe.get(), plain(address), sizeof address) == 0 || errno != ECONNREFUSED) {
        throw std::runtime_error(fmt::format("{} is in use", path.string()));
    }
    fs::remove(path);
}

int listen_at(const fs::path& path) {
    const sockaddr_un address = address_of(path);
    clear_way(path, address);
    const int listener = new_socket();
    // The file gets the mode that the socket has now, so that it never has a wider one.
    if (listener < 0 || ::fchmod(listener, S_IRUSR | S_IWUSR) != 0
        || ::bind(listener, plain(address), sizeof address) != 0 || ::listen(listener, SOMAXCONN) != 0) {
        const int error = errno;
        if (listener >= 0) { ::close(listener); }
        throw std::system_error(error, std::generic_category(), path.string());
    }
    return listener;
}

std::pair<dev_t, ino_t> file_at(const fs::path& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) { return {}; }
    return {status.st_dev, status.st_ino};
}

// What it has asked already is taken, as the answer might be lost with it.
void turn_away(const Descriptor& socket) {
    const std::string answer = refusal(fmt::format("{} clients are served, and no more", kMostClients)).dump() + "\n";
    std::array<char, 4096> asked{};
    ::recv(socket.get(), asked.data(), asked.size(), MSG_DONTWAIT);
    ::send(socket.get(), answer.data(), answer.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
}

}  // namespace

ControlServer::ControlServer(const fs::path& path, Control& control, std::chrono::milliseconds patience)
    : path_(path), control_(control), patience_(patience), listener_(listen_at(path), "socket"), file_(file_at(path)) {
    control_.pin_pad().board().on_change([this] { wakeUp_.wake(); });
    thread_ = std::thread([this] { serve(); });
}

ControlServer::~ControlServer() {
    control_.pin_pad().board().on_change({});
    stopping_ = true;
    wakeUp_.wake();
    thread_.join();
    std::error_code ignored;
    if (file_at(path_) == file_) { fs::remove(path_, ignored); }
}

void ControlServer::serve() {
    while (!stopping_) {
        std::vector<pollfd> polled{{wakeUp_.get(), POLLIN, 0}, {listener_.get(), POLLIN, 0}};
        for (const Client& client : clients_) { polled.push_back({client.socket(), client.events(), 0}); }
        if (::poll(polled.data(), polled.size(), limit()) < 0) { continue; }
        if (polled[0].revents != 0) { wakeUp_.clear(); }
        auto at = polled.begin() + 2;
        for (Client& client : clients_) {
            const auto& [socket, events, revents] = *at++;
            if ((revents & POLLIN) != 0) {
                client.read();
            } else if ((revents & (POLLHUP | POLLERR)) != 0) {
                client.forsake();
            }
            client.work();
        }
        clients_.remove_if([](const Client& client) { return client.is_over(); });
        if (polled[1].revents != 0) { take_client(); }
    }
}

void ControlServer::take_client() {
    const int socket = ::accept4(listener_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (socket >= 0 && clients_.size() < kMostClients) {
        clients_.emplace_back(socket, control_, patience_);
    } else if (socket >= 0) {
        turn_away(Descriptor(socket, "accept4"));
    } else if (errno == EMFILE || errno == ENFILE) {
        // The client goes on waiting at the door, so without a pause this would be asked again and again.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

int ControlServer::limit() const {
    using std::chrono::milliseconds;
    std::optional<milliseconds> least;
    for (const Client& client : clients_) {
        const auto deadline = client.deadline();
        if (!deadline) { continue; }
        const auto left = std::chrono::ceil<milliseconds>(*deadline - std::chrono::steady_clock::now());
        least = std::clamp(left, milliseconds::zero(), least.value_or(std::chrono::hours(1)));
    }
    return least ? static_cast<int>(least->count()) : -1;
}

}  // namespace quorvel::sim
