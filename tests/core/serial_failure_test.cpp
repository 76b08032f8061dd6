// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "core/serial.h"
#include "tests/core/line.h"
#include "tests/core/serial_port.h"
#include "tests/core/signals.h"
#include "tests/support/elapsed.h"
#include "tests/support/raised.h"

using namespace std::chrono_literals;

namespace {

class InterruptedSerial : public ConfiguredSerial, public testing::WithParamInterface<int> {};

TEST_P(InterruptedSerial, ReadKeepsToTheTimeOutCountedFromItsStart) {
    const Signals signals(GetParam());
    EXPECT_NO_RAISE(kor_serial_set_read_timeout(port, 2));
    const support::Elapsed elapsed;
    EXPECT_RAISES(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data", kor_serial_read_byte(port));
    EXPECT_TRUE(elapsed.between(200ms, 5000ms));
    EXPECT_GT(signals.seen(), 5);
}

TEST_P(InterruptedSerial, WriteSendsEverythingOnce) {
    std::string sent;
    for (size_t i = 0; i < 200'000; ++i) { sent += static_cast<char>('0' + i % 61); }
    std::string received;
    std::thread far([&] {
        for (std::string some = "-"; received.size() < sent.size() && !some.empty(); received += some) {
            std::this_thread::sleep_for(1ms);
            some = line.received(std::min<size_t>(2000, sent.size() - received.size()));
        }
    });
    int seen = 0;
    {
        const Signals signals(GetParam());
        EXPECT_NO_RAISE(kor_serial_write(port, sent.data(), sent.size()));
        seen = signals.seen();
    }
    far.join();
    EXPECT_TRUE(received == sent);
    EXPECT_GT(seen, 5);
}

TEST_P(InterruptedSerial, WriteWaitsOutTheDrain) {
    // So often that some signals come during a drain, which is short.
    constexpr size_t kBytes = 20'000;
    std::string received;
    std::thread far([&] { received = line.received(kBytes); });
    {
        const Signals signals(GetParam(), 30us);
        const auto write_each = [&] {
            for (size_t i = 0; i < kBytes; ++i) { kor_serial_write_byte(port, 'x'); }
        };
        EXPECT_NO_RAISE(write_each());
    }
    far.join();
    EXPECT_EQ(received.size(), kBytes);
}

INSTANTIATE_TEST_SUITE_P(Signals, InterruptedSerial, testing::Values(0, SA_RESTART),
                         [](const auto& test) { return test.param == 0 ? "Interrupting" : "Restarting"; });

class FailingSerial : public ConfiguredSerial {};

TEST_F(FailingSerial, AHungUpLineIsAnErrorAndNoTimeOut) {
    EXPECT_NO_RAISE(kor_serial_set_read_timeout(port, 255));
    line.hang_up();
    char byte = 0;
    const support::Elapsed elapsed;
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "read() error: 5", kor_serial_read(port, &byte, 1));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "read() error: 5", kor_serial_read_ui32(port, 0));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "read() error: 5", kor_serial_read_str(port, &byte, 1));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "tcdrain() error: 5", kor_serial_write_byte(port, 1));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "tcflush() error: 5", kor_serial_purge(port, KOR_SERIAL_PURGE_BOTH));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "ioctl(FIONREAD) error: 5", kor_serial_available(port));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "tcgetattr() error: 5", kor_serial_set_read_timeout(port, 1));
    EXPECT_TRUE(elapsed.between(0ms, 10'000ms));
    const support::ReturningRaises raises;
    EXPECT_EQ(kor_serial_read_byte(port), 0);
    kor_serial_write(port, "abc", 3);
    EXPECT_EQ(raises.all(), support::errors(KOR_RESULT_IO_ERROR, {"read() error: 5", "tcdrain() error: 5"}));
    kor_serial_close(&port);
    EXPECT_EQ(port, nullptr);
}

TEST_F(FailingSerial, AHangUpEndsAWaitingRead) {
    EXPECT_NO_RAISE(kor_serial_set_read_timeout(port, 255));
    const support::Elapsed elapsed;
    std::thread later([&] {
        std::this_thread::sleep_for(50ms);
        line.hang_up();
    });
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "read() error: 5", kor_serial_read_byte(port));
    later.join();
    EXPECT_TRUE(elapsed.between(50ms, 20'000ms));
}

TEST_F(FailingSerial, AClosedDescriptorIsReported) {
    close(port->fd);
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "read() error: 9", kor_serial_read_byte(port));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "tcdrain() error: 9", kor_serial_write_byte(port, 1));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "tcgetattr() error: 9", kor_serial_config(port, &kConfig));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "close() error: 9", kor_serial_close(&port));
    EXPECT_EQ(port, nullptr);
}

// A descriptor without the right to write drains all the same, and one without the right to read waits.
TEST_F(FailingSerial, AReadOrWriteThatFailsAloneIsReportedWithItsOwnNumber) {
    replace_descriptor(open(line.path().c_str(), O_RDONLY | O_NOCTTY));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "write() error: 9", kor_serial_write_byte(port, 1));
    replace_descriptor(open(line.path().c_str(), O_WRONLY | O_NOCTTY));
    line.feed("x");
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "read() error: 9", kor_serial_read_byte(port));
}

}  // namespace
