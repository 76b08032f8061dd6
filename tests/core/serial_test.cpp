// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "core/serial.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>
#include <tuple>

#include "tests/core/line.h"
#include "tests/core/serial_port.h"
#include "tests/core/signals.h"
#include "tests/core/temp_dir.h"
#include "tests/support/elapsed.h"
#include "tests/support/raised.h"

using namespace std::chrono_literals;
using namespace std::string_literals;

namespace {

// All that tcgetattr tells but the speeds.
std::string as_bytes(const termios& settings) {
    return {reinterpret_cast<const char*>(&settings), offsetof(termios, c_cc) + sizeof settings.c_cc};
}

TEST(SerialOpen, BlocksAndLeavesTheSettings) {
    const Line line;
    const termios before = line.settings();
    KorSerial* opened = kor_serial_open(line.path().c_str());
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(fcntl(opened->fd, F_GETFL) & (O_NONBLOCK | O_ACCMODE), O_RDWR);
    EXPECT_EQ(fcntl(opened->fd, F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(as_bytes(line.settings()), as_bytes(before));
    kor_serial_close(&opened);
    EXPECT_EQ(opened, nullptr);
}

TEST(SerialOpen, NamesWhatIsWrongWithThePath) {
    const TempDir dir;
    const std::string missing = dir / "missing 100%s %n";
    const std::string directory = dir.dir("directory");
    const size_t descriptors = open_descriptors();
    EXPECT_RAISES(KOR_RESULT_FILE_NOT_FOUND, "No such port: " + missing, kor_serial_open(missing.c_str()));
    EXPECT_RAISES(KOR_RESULT_FILE_NOT_FOUND, "No such port: " + directory, kor_serial_open(directory.c_str()));
    const support::ReturningRaises raises;
    EXPECT_EQ(kor_serial_open("/dev/null"), nullptr);
    EXPECT_EQ(raises.all(), std::vector{support::error(KOR_RESULT_IO_ERROR, "tcgetattr() error: 25")});
    EXPECT_EQ(open_descriptors(), descriptors);
}

TEST(SerialOpen, TellsForbiddenFromBusy) {
    const Line forbidden;
    const Line busy;
    ASSERT_EQ(fchmod(forbidden.near_side(), 0), 0);
    ASSERT_EQ(fchmod(busy.near_side(), 0666), 0);
    ASSERT_EQ(ioctl(busy.near_side(), TIOCEXCL), 0);
    const uid_t user = geteuid();
    // Root may open everything.
    if (user == 0 && seteuid(65534) != 0) { GTEST_SKIP() << "the system does not let go of root's rights"; }
    EXPECT_RAISES(KOR_RESULT_PERMISSION_DENIED, "Permission denied for port : " + forbidden.path(),
                  kor_serial_open(forbidden.path().c_str()));
    EXPECT_RAISES(KOR_RESULT_DEVICE_BUSY, "Port is busy: " + busy.path(), kor_serial_open(busy.path().c_str()));
    EXPECT_EQ(seteuid(user), 0);
}

TEST_F(Serial, ConfigMakesTheLineRaw) {
    termios cooked = line.settings();
    cooked.c_iflag |= ISTRIP | INLCR | IGNCR | ICRNL | IXON | IXOFF | IXANY;
    cooked.c_oflag |= OPOST | ONLCR;
    cooked.c_lflag |= ICANON | ECHO | ECHOE | ISIG | IEXTEN;
    ASSERT_EQ(tcsetattr(line.near_side(), TCSANOW, &cooked), 0);
    const KorSerialConfig config{255, 115200, 8, 2, 0, 0};
    EXPECT_NO_RAISE(kor_serial_config(port, &config));
    const termios settings = line.settings();
    EXPECT_EQ(settings.c_iflag & (ISTRIP | INLCR | IGNCR | ICRNL | IXON | IXOFF | IXANY), tcflag_t{IXANY});
    EXPECT_EQ(settings.c_oflag & (OPOST | ONLCR), 0U);
    EXPECT_EQ(settings.c_lflag & (ICANON | ECHO | ECHOE | ISIG | IEXTEN), tcflag_t{IEXTEN});
    EXPECT_EQ(settings.c_cflag & (CSIZE | CSTOPB | CREAD | CLOCAL), tcflag_t{CS8 | CSTOPB | CREAD | CLOCAL});
    EXPECT_EQ(cfgetispeed(&settings), speed_t{B115200});
    EXPECT_EQ(cfgetospeed(&settings), speed_t{B115200});
    EXPECT_EQ(settings.c_cc[VMIN], 0);
    EXPECT_EQ(settings.c_cc[VTIME], 255);
    // The control bytes of the protocol among them, which a line discipline would keep for itself.
    std::string every;
    for (int byte = 0; byte < 256; ++byte) { every += static_cast<char>(byte); }
    line.feed(every);
    std::string read(every.size(), '\0');
    EXPECT_EQ(kor_serial_read(port, read.data(), read.size()), every.size());
    EXPECT_EQ(read, every);
    EXPECT_NO_RAISE(kor_serial_write(port, every.data(), every.size()));
    EXPECT_EQ(line.received(every.size()), every);
    EXPECT_TRUE(line.is_quiet());
}

TEST_F(Serial, ConfigWithOneBadValueAppliesNone) {
    const std::pair<KorSerialConfig, const char*> cases[] = {
        {{9, 1, 9, 0, 9, 3}, "Unsupported baudRate: 1"},       {{9, 9600, 9, 0, 9, 3}, "Unsupported dataBits: 9"},
        {{9, 9600, 8, 0, 9, 3}, "Unsupported stopBits: 0"},    {{9, 9600, 8, 1, 9, 3}, "Unsupported parity: 9"},
        {{9, 9600, 8, 1, 0, 3}, "Unsupported flowControl: 3"},
    };
    const termios before = line.settings();
    for (const auto& [config, detail] : cases) {
        const support::ReturningRaises raises;
        kor_serial_config(port, &config);
        EXPECT_EQ(raises.all(), support::errors(KOR_RESULT_RUNTIME_ERROR, {detail}));
        EXPECT_EQ(as_bytes(line.settings()), as_bytes(before)) << detail;
    }
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'config' is NULL", kor_serial_config(port, nullptr));
}

TEST_F(Serial, ASetterLeavesTheOtherSettings) {
    const KorSerialConfig config{7, 4800, 8, 2, 0, 1};
    EXPECT_NO_RAISE(kor_serial_config(port, &config));
    EXPECT_NO_RAISE(kor_serial_set_read_timeout(port, 3));
    EXPECT_NO_RAISE(kor_serial_set_baud_rate(port, 57600));
    termios settings = line.settings();
    EXPECT_EQ(settings.c_cc[VTIME], 3);
    EXPECT_EQ(cfgetospeed(&settings), speed_t{B57600});
    EXPECT_EQ(settings.c_iflag & (IXON | IXOFF), tcflag_t{IXON | IXOFF});
    EXPECT_EQ(settings.c_cflag & CSTOPB, tcflag_t{CSTOPB});
    EXPECT_NO_RAISE(kor_serial_set_stop_bits(port, 1));
    EXPECT_NO_RAISE(kor_serial_set_flow_control(port, 0));
    EXPECT_NO_RAISE(kor_serial_set_parity(port, 1));
    EXPECT_NO_RAISE(kor_serial_set_parity(port, 0));
    EXPECT_NO_RAISE(kor_serial_set_data_bits(port, 8));
    settings = line.settings();
    EXPECT_EQ(settings.c_iflag & (IXON | IXOFF), 0U);
    EXPECT_EQ(settings.c_cflag & (CSTOPB | PARENB | PARODD | CSIZE), tcflag_t{PARODD | CS8});
}

TEST_F(ConfiguredSerial, ReadStopsShortWhenTheTimeOutExpires) {
    line.feed("abc");
    char bytes[5] = {};
    const support::Elapsed elapsed;
    EXPECT_EQ(kor_serial_read(port, bytes, sizeof bytes), 3U);
    EXPECT_TRUE(elapsed.between(100ms, 5000ms));
    EXPECT_STREQ(bytes, "abc");
    EXPECT_NO_RAISE(kor_serial_set_read_timeout(port, 0));
    EXPECT_EQ(kor_serial_read(port, bytes, 1), 0U);
    EXPECT_STREQ(bytes, "abc");
    line.feed("y");
    EXPECT_EQ(kor_serial_read(port, bytes, 1), 1U) << "what is there needs no wait";
}

TEST_F(ConfiguredSerial, TheTimeOutStartsAfreshWithEachArrival) {
    EXPECT_NO_RAISE(kor_serial_set_read_timeout(port, 4));
    std::thread slow([&] {
        for (const char* next = "12345"; *next != '\0'; ++next) {
            std::this_thread::sleep_for(120ms);
            line.send({next, 1});
        }
    });
    char bytes[6] = {};
    EXPECT_EQ(kor_serial_read(port, bytes, 5), 5U);
    slow.join();
    EXPECT_STREQ(bytes, "12345");
}

TEST_F(Serial, AnUnconfiguredReadWaitsAsTheDeviceWasTold) {
    termios raw = line.settings();
    cfmakeraw(&raw);
    ASSERT_EQ(tcsetattr(line.near_side(), TCSANOW, &raw), 0);
    const Signals signals(0);
    std::thread later([&] {
        std::this_thread::sleep_for(50ms);
        line.send("z");
    });
    char byte = 0;
    EXPECT_EQ(kor_serial_read(port, &byte, 1), 1U);
    later.join();
    EXPECT_EQ(byte, 'z');
    EXPECT_GT(signals.seen(), 0);
}

TEST_F(ConfiguredSerial, WritesNumbersInTheByteOrderAskedFor) {
    EXPECT_NO_RAISE(kor_serial_write_byte(port, 0xF1));
    EXPECT_NO_RAISE(kor_serial_write_ui16(port, 0x1234, 0));
    EXPECT_NO_RAISE(kor_serial_write_ui16(port, 0x1234, 1));
    EXPECT_NO_RAISE(kor_serial_write_i16(port, -2, -1));
    EXPECT_NO_RAISE(kor_serial_write_ui32(port, 0x12345678, 0));
    EXPECT_NO_RAISE(kor_serial_write_ui32(port, 0x12345678, 7));
    EXPECT_NO_RAISE(kor_serial_write_i32(port, -3, 1));
    EXPECT_NO_RAISE(kor_serial_write_str(port, "ab", false));
    EXPECT_NO_RAISE(kor_serial_write_str(port, "cd", true));
    EXPECT_NO_RAISE(kor_serial_write_str(port, "", false));
    EXPECT_NO_RAISE(kor_serial_write(port, nullptr, 0));
    const std::string expected =
        "\xF1\x12\x34\x34\x12\xFE\xFF\x12\x34\x56\x78\x78\x56\x34\x12\xFD\xFF\xFF\xFF"
        "abcd\0"s;
    EXPECT_EQ(line.received(expected.size()), expected);
    EXPECT_TRUE(line.is_quiet());
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'text' is NULL", kor_serial_write_str(port, nullptr, true));
}

TEST_F(ConfiguredSerial, ReadsNumbersInTheByteOrderAskedFor) {
    line.feed("\xF1\x12\x34\x12\x34\xFE\xFF\x89\x34\x56\x78\x89\x34\x56\x78\xFD\xFF\xFF\xFF");
    EXPECT_EQ(kor_serial_read_byte(port), 0xF1);
    EXPECT_EQ(kor_serial_read_ui16(port, 0), 0x1234);
    EXPECT_EQ(kor_serial_read_ui16(port, 1), 0x3412);
    EXPECT_EQ(kor_serial_read_i16(port, 9), -2);
    EXPECT_EQ(kor_serial_read_ui32(port, 0), 0x89345678U);
    EXPECT_EQ(kor_serial_read_ui32(port, -1), 0x78563489U);
    EXPECT_EQ(kor_serial_read_i32(port, 1), -3);
    line.feed("\x12\x34\x56");
    EXPECT_RAISES(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data", kor_serial_read_i32(port, 0));
    line.feed("\x9A\xBC");
    EXPECT_EQ(kor_serial_read_ui16(port, 0), 0x9ABC) << "the bytes of a number cut short are lost";
}

TEST_F(ConfiguredSerial, ReadStrFitsTheTextIntoItsBuffer) {
    const std::tuple<size_t, std::string, std::string> cases[] = {
        {4, "ABCDEF\0"s, "ABC\0...."s}, {4, "ABC\0"s, "ABC\0...."s}, {8, "ABC\0"s, "ABC\0...."s},
        {4, "\0"s, "\0......."s},       {1, "ABC\0"s, "\0......."s}, {0, "ABC\0"s, "........"s},
    };
    for (const auto& [size, sent, left] : cases) {
        line.feed(sent + "!");
        std::string buffer(8, '.');
        EXPECT_EQ(kor_serial_read_str(port, buffer.data(), size), buffer.data());
        EXPECT_EQ(buffer, left);
        EXPECT_EQ(kor_serial_read_byte(port), '!') << "the text ends at its NUL";
    }
    line.feed("AB");
    char unended[8];
    EXPECT_RAISES(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data",
                  kor_serial_read_str(port, unended, sizeof unended));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'buffer' is NULL", kor_serial_read_str(port, nullptr, 8));
}

TEST_F(ConfiguredSerial, PurgeDiscardsTheQueueThatItNames) {
    for (const auto& [type, left] : {std::pair(KOR_SERIAL_PURGE_OUTPUT, 3U), std::pair(KOR_SERIAL_PURGE_INPUT, 0U),
                                     std::pair(KOR_SERIAL_PURGE_BOTH, 0U)}) {
        line.feed("abc");
        EXPECT_EQ(kor_serial_available(port), 3U);
        kor_serial_purge(port, type);
        EXPECT_EQ(kor_serial_available(port), left);
        tcflush(line.near_side(), TCIFLUSH);
    }
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "Unsupported purgeType: 3", kor_serial_purge(port, 3));
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "Unsupported purgeType: -1", kor_serial_purge(port, -1));
}

}  // namespace
