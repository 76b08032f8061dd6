// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SIMULATOR_CIPHER_FIXTURE_H
#define QUORVEL_TESTS_SIMULATOR_CIPHER_FIXTURE_H

#include <string>

#include "tests/simulator/command_fixture.h"

namespace quorvel::sim {

// For answers that nobody can spell, because something random is in them.
class CipherTest : public CommandTest {
protected:
    std::string ask(const std::string& request) {
        host_->send(support::frame(request));
        EXPECT_EQ(host_->receive(2), ack + "\x16");
        std::string packet;
        for (std::string byte = host_->receive(1); byte != "\x17"; byte = host_->receive(1)) {
            if (byte.empty()) return packet;
            if (byte == "\x13") byte = static_cast<char>(host_->receive(1)[0] - 0x20);
            packet += byte;
        }
        EXPECT_EQ(host_->receive(2).size(), 2U);
        return packet;
    }
};

}  // namespace quorvel::sim

#endif
