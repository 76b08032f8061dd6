// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <string>
#include <sys/socket.h>

#include "fuzz/harness.h"
#include "simulator/control/client.h"

using namespace quorvel::sim;
using quorvel::fuzz::require;

namespace {

// More would not go into the socket before anybody reads.
constexpr size_t kLongest = 100000;

std::string taken(const Descriptor& socket) {
    std::string bytes;
    std::array<char, 4096> some{};
    for (ssize_t count = 0; (count = ::recv(socket.get(), some.data(), some.size(), MSG_DONTWAIT)) > 0;) {
        bytes.append(some.data(), static_cast<size_t>(count));
    }
    return bytes;
}

}  // namespace

// The lines of one client, which then goes, at a PIN pad that does nothing.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > kLongest) { return 0; }
    PinPad pinPad;
    Control control(pinPad);
    std::array<int, 2> ends{};
    require(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0, "there are sockets");
    Client client(ends[0], control, std::chrono::hours(1));
    const Descriptor other(ends[1], "socketpair");
    require(::send(other.get(), data, size, MSG_DONTWAIT) == static_cast<ssize_t>(size) || size == 0,
            "all of it is sent");
    ::shutdown(other.get(), SHUT_WR);
    std::string answers;
    // One that awaits a command would do so for a day.
    while (!client.is_over() && !client.deadline()) {
        if ((client.events() & POLLIN) != 0) { client.read(); }
        client.work();
        answers += taken(other);
    }
    for (size_t begin = 0; begin < answers.size();) {
        const size_t end = std::min(answers.find('\n', begin), answers.size());
        const auto answer = nlohmann::json::parse(answers.substr(begin, end - begin), nullptr, false);
        require(answer.is_object() && (answer.value("ok", false) || answer.contains("error")),
                "each line is an answer");
        begin = end + 1;
    }
    return 0;
}
