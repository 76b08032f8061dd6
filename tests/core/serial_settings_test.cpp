// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "core/serial_settings.h"

#include <tuple>

#include "tests/support/raised.h"

namespace {

// Every bit set, or none: what a setting must not touch shows.
termios filled(tcflag_t flags) {
    termios settings{};
    settings.c_iflag = settings.c_oflag = settings.c_cflag = settings.c_lflag = flags;
    return settings;
}

constexpr tcflag_t kAll = ~tcflag_t{0};

TEST(SerialSettings, EachValueChangesItsOwnBitsOnly) {
    // What each clears and sets of the input flags, then of the control flags.
    const std::tuple<bool (*)(termios&, int32_t), int32_t, tcflag_t, tcflag_t, tcflag_t, tcflag_t> cases[] = {
        {kor::set_data_bits, 5, 0, 0, CSIZE, CS5},
        {kor::set_data_bits, 6, 0, 0, CSIZE, CS6},
        {kor::set_data_bits, 7, 0, 0, CSIZE, CS7},
        {kor::set_data_bits, 8, 0, 0, CSIZE, CS8},
        {kor::set_stop_bits, 1, 0, 0, CSTOPB, 0},
        {kor::set_stop_bits, 2, 0, 0, 0, CSTOPB},
        {kor::set_stop_bits, 3, 0, 0, 0, CSTOPB},                 // one and a half go as two
        {kor::set_parity, 0, 0, 0, PARENB, 0},                    // keeps the kind
        {kor::set_parity, 1, 0, 0, CMSPAR, PARENB | PARODD},      // odd, not mark
        {kor::set_parity, 2, 0, 0, CMSPAR | PARODD, PARENB},      // even, not space
        {kor::set_flow_control, 0, IXON | IXOFF, 0, CRTSCTS, 0},  // none
        {kor::set_flow_control, 1, 0, IXON | IXOFF, CRTSCTS, 0},  // software
        {kor::set_flow_control, 2, IXON | IXOFF, 0, 0, CRTSCTS},  // hardware
    };
    for (const auto& [apply, value, inputClear, inputSet, controlClear, controlSet] : cases) {
        for (const tcflag_t before : {tcflag_t{0}, kAll}) {
            termios settings = filled(before);
            EXPECT_TRUE(apply(settings, value));
            EXPECT_EQ(settings.c_iflag, (before & ~inputClear) | inputSet) << value;
            EXPECT_EQ(settings.c_cflag, (before & ~controlClear) | controlSet) << value;
            EXPECT_EQ(settings.c_oflag, before) << value;
            EXPECT_EQ(settings.c_lflag, before) << value;
        }
    }
}

TEST(SerialSettings, OtherValuesAreRefused) {
    const std::tuple<bool (*)(termios&, int32_t), std::string, std::vector<int32_t>> cases[] = {
        // 13 is B9600 and 15 B38400: the numbers behind the constants are no speeds.
        {kor::set_baud_rate, "baudRate", {0, 13, 15, 50, 9601, 230400, -9600}},
        {kor::set_data_bits, "dataBits", {4, 9, 0, -8, 0x30}},
        {kor::set_stop_bits, "stopBits", {0, 4, -1}},
        {kor::set_parity, "parity", {3, -1}},
        {kor::set_flow_control, "flowControl", {3, -1}},
    };
    for (const auto& [function, name, values] : cases) {
        const auto apply = function;
        for (const int32_t value : values) {
            termios settings{};
            EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "Unsupported " + name + ": " + std::to_string(value),
                          apply(settings, value));
        }
    }
}

TEST(SerialSettings, ASpeedIsThatOfBothDirections) {
    termios settings = filled(kAll);
    EXPECT_TRUE(kor::set_baud_rate(settings, 19200));
    EXPECT_EQ(cfgetispeed(&settings), speed_t{B19200});
    EXPECT_EQ(cfgetospeed(&settings), speed_t{B19200});
    EXPECT_EQ(settings.c_cflag & CIBAUD, 0U) << "a speed left for one direction";
}

}  // namespace
