// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors

// Has a card inserted, swiped or tapped, and tells its number, masked: cpp_read_card [PORT]
#include <iostream>

#include "quorvel/quorvel.hpp"

int main(int argc, char** argv) try {
    quorvel::Link link(argc > 1 ? argv[1] : "/dev/ttyACM0");
    auto session = link.open();
    const auto card = session.run(quorvel::Gcx{.amount = 1234, .contactless = true, .pan_mask = quorvel::PanMask{6, 4}},
                                  std::chrono::minutes(1));
    if (card.ok() && card->pan) { std::cout << card->pan->reveal() << '\n'; }
    session.close("THANK YOU");
    if (card.ok()) { return 0; }
    std::cerr << card.status().name() << '\n';
    return 1;
} catch (const quorvel::Error& error) {
    std::cerr << error.text() << '\n';
    return 1;
}
