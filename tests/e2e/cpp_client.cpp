// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/e2e/cpp_client.h"

#include "quorvel/quorvel.hpp"

namespace client {

std::string plain(const std::string& port) {
    quorvel::Link link(port);
    auto session = link.open();
    return std::string(session.run(quorvel::Dsp{"PLAIN"}).status().name());
}

std::string encrypted(const std::string& port) {
    quorvel::Link link(port);
    auto session = link.open(quorvel::secure);
    const auto key = session.run(quorvel::Dwk2{}).require();
    auto wait = session.start(quorvel::Gky{});
    std::string all = std::to_string(key.key().size()) + ' ';
    wait.on_notice([&](std::string_view text) { all.append(text) += ' '; });
    all += name(wait.get(std::chrono::seconds(10)).value());
    session.close("BYE");
    return all;
}

std::string plain_after_encrypted(const std::string& port, const std::function<void()>& spoil) {
    quorvel::Link link(port);
    auto session = link.open(quorvel::secure);
    spoil();
    try {
        session.close();
        return "it could be closed";
    } catch (const quorvel::Error&) {}  // as it was meant to be
    std::string enciphered;
    auto next = link.open();
    link.observe([&](const quorvel::Event& event) { enciphered += event.encrypted ? 'E' : 'P'; });
    return std::string(next.run(quorvel::Dsp{"PLAIN"}).status().name()) + ' ' + enciphered;
}

}  // namespace client
