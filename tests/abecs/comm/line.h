// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_ABECS_COMM_LINE_H
#define QUORVEL_TESTS_ABECS_COMM_LINE_H

#include <chrono>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/elapsed.h"
#include "tests/support/link.h"
#include "tests/support/packets.h"

// The bytes on the line that the tests of the link share.
namespace support {

using namespace std::chrono_literals;

const std::string kAck = "06"_hex;
const std::string kNak = "15"_hex;
const std::string kCan = "18"_hex;
const std::string kEot = "04"_hex;
const std::string kGin = "16 47494E3030323030 17 EECA"_hex;
const std::string kGood = "16 47494E303030 17 B695"_hex;  // a response, and with a wrong check
const std::string kBad = "16 47494E303030 17 B694"_hex;

const Raised kTimeout = error(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data");
const Raised kRejected = error(kProtocol, "Packet was rejected");
const Raised kNoCan = error(kIo, "Communication error while sending CAN");

inline Raised raised_by_sending(const Link& link, AbecsPacket* packet) {
    return raised_by([&] { abecs_comm_send_packet(link.comm, packet); });
}

// A link, and a packet for what is read.
class OnLink : public testing::Test {
protected:
    Raised read() {
        return raised_by([this] { EXPECT_EQ(abecs_comm_read_packet(link.comm, packet), packet.get()); });
    }

    std::string receive() {
        EXPECT_EQ(read(), Raised{});
        return packet.take();
    }

    Link link;
    Packet packet;
};

}  // namespace support

#endif
