// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors

// Asks the PIN pad who it is:
//
//     cpp_who /dev/ttyACM0

#include <cstdlib>
#include <iostream>

#include "quorvel/quorvel.hpp"

int main(int argc, char** argv) {
    try {
        quorvel::Link link(argc > 1 ? argv[1] : "/dev/ttyACM0");
        auto session = link.open();
        const auto who = session.run(quorvel::Gin{});
        if (!who.ok()) {
            std::cerr << who.status().name() << '\n';
            return EXIT_FAILURE;
        }
        std::cout << who->manufacturer << ' ' << who->serial << '\n';
    } catch (const quorvel::Error& error) {
        std::cerr << error.text() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
