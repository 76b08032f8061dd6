// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors

// Serves two PIN pads from one thread: asks for a key at both, tells each key as it is pressed, and ends with the
// second:
//
//     cpp_two_pin_pads /dev/ttyACM0 /dev/ttyACM1

#include <array>
#include <cstdlib>
#include <iostream>
#include <poll.h>

#include "quorvel/quorvel.hpp"

namespace {

// Destroyed from the bottom up: the wait is cancelled, the session closed, the port released.
struct Lane {
    explicit Lane(const char* path)
        : port(path), link(path, {.claim = true}), session(link.open()), wait(begin(session)) {}

    static quorvel::Wait<quorvel::Key> begin(quorvel::Session& session) {
        session.run(quorvel::Dsp{.text = "PRESS A KEY"}).require();
        return session.start(quorvel::Gky{});
    }

    // Takes what has come; there may be nothing yet.
    void serve() {
        const auto answer = wait.poll();
        if (!answer) { return; }
        std::cout << port << ": " << name(answer->value()) << std::endl;
        session.close("THANK YOU");
    }

    const char* port;
    quorvel::Link link;
    quorvel::Session session;
    quorvel::Wait<quorvel::Key> wait;
};

// Until both are served. What a link has read already does not make its descriptor readable.
void loop(std::array<Lane, 2>& lanes) {
    constexpr int kPatience = 60'000;
    while (lanes[0].wait.is_waiting() || lanes[1].wait.is_waiting()) {
        std::array<pollfd, 2> descriptors{};
        int time = kPatience;
        for (size_t i = 0; i < lanes.size(); ++i) {
            const bool waits = lanes[i].wait.is_waiting();
            descriptors[i] = {.fd = waits ? lanes[i].link.descriptor() : -1, .events = POLLIN, .revents = 0};
            if (waits && lanes[i].link.has_input()) { time = 0; }
        }
        if (poll(descriptors.data(), descriptors.size(), time) == 0 && time != 0) {
            throw quorvel::Error(quorvel::ErrorCode::timeout, "nobody has pressed a key");
        }
        for (Lane& lane : lanes) {
            if (lane.wait.is_waiting()) { lane.serve(); }
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: " << argv[0] << " PORT PORT\n";
        return EXIT_FAILURE;
    }
    try {
        std::array<Lane, 2> lanes{Lane(argv[1]), Lane(argv[2])};
        loop(lanes);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
