// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_CORE_SERIAL_PORT_H
#define QUORVEL_TESTS_CORE_SERIAL_PORT_H

#include <gtest/gtest.h>
#include <unistd.h>

#include "core/serial.h"
#include "tests/core/line.h"
#include "tests/support/raised.h"

inline constexpr KorSerialConfig kConfig{
    1, 19200, 8, KOR_SERIAL_STOP_BITS_ONE, KOR_SERIAL_PARITY_NONE, KOR_SERIAL_FLOW_CONTROL_NONE};

// A port on a line of its own, as it is when just opened.
class Serial : public testing::Test {
protected:
    void SetUp() override { ASSERT_NE(port, nullptr); }
    ~Serial() override { kor_serial_close(&port); }

    // The port's descriptor becomes another one, so that system calls on it fail.
    void replace_descriptor(int fd) const {
        ASSERT_EQ(dup3(fd, port->fd, O_CLOEXEC), port->fd);
        close(fd);
    }

    Line line;
    KorSerial* port = kor_serial_open(line.path().c_str());
};

class ConfiguredSerial : public Serial {
protected:
    void SetUp() override {
        Serial::SetUp();
        EXPECT_NO_RAISE(kor_serial_config(port, &kConfig));
    }
};

#endif
