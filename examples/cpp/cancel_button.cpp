// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors

// Waits for a card until somebody presses the till's cancel button, which is ENTER on the keyboard, or a minute is
// over:
//
//     cpp_cancel_button /dev/ttyACM0

#include <cstdlib>
#include <iostream>
#include <poll.h>
#include <thread>
#include <unistd.h>

#include "quorvel/quorvel.hpp"

using namespace std::chrono_literals;

namespace {

// The button: a thread that asks the wait to stop, and that ends with it.
void watch_button(const std::stop_token& over, std::stop_source& cancel) {
    pollfd button{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
    while (!over.stop_requested()) {
        if (poll(&button, 1, 100) > 0) {
            cancel.request_stop();
            return;
        }
    }
}

int run(const char* port) {
    quorvel::Link link(port);
    auto session = link.open(quorvel::secure);
    auto wait = session.start(quorvel::Gcx{.amount = 1234, .timeout = 60s});
    wait.on_notice([](std::string_view text) { std::cout << text << std::endl; });
    std::stop_source cancel;
    const std::jthread button([&](const std::stop_token& over) { watch_button(over, cancel); });
    std::cout << "insert the card, or press ENTER to cancel" << std::endl;
    try {
        const auto card = wait.get(90s, cancel.get_token());
        std::cout << (card.ok() ? "a card was read" : card.status().name()) << '\n';
        session.close("THANK YOU");
    } catch (const quorvel::Ended& ended) {
        std::cout << (ended.why() == quorvel::Ended::Why::cancelled ? "cancelled" : "too late") << '\n';
        session.close("CANCELLED");
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 2) {
        std::cerr << "usage: " << argv[0] << " PORT\n";
        return EXIT_FAILURE;
    }
    return run(argv[1]);
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
}
