// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "core/serial.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tuple>

#include "quorvel/kor/string_list.h"
#include "tests/core/owned.h"
#include "tests/core/signals.h"
#include "tests/core/temp_dir.h"
#include "tests/support/elapsed.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/peer.h"
#include "tests/support/refused.h"

using namespace std::chrono_literals;
using namespace std::string_literals;

namespace {

constexpr KorSerialConfig kConfig{
    1, 19200, 8, KOR_SERIAL_STOP_BITS_ONE, KOR_SERIAL_PARITY_NONE, KOR_SERIAL_FLOW_CONTROL_NONE};

// A port on a line of its own, as it is when just opened.
class Serial : public testing::Test {
protected:
    void SetUp() override { ASSERT_NE(port, nullptr); }
    ~Serial() override {
        peer.finish();
        kor_serial_close(&port);
    }

    // Sends and waits until the port can read as much: it takes the kernel a moment.
    void feed(const std::string& bytes) {
        peer.send(bytes);
        while (kor_serial_available(port) < bytes.size()) { usleep(100); }
    }

    // The line goes once the port has nothing left to read, which is when the bytes are with the caller.
    std::jthread hang_up_once_read() {
        return std::jthread([this] {
            for (int waiting = 1; waiting != 0;) { ioctl(port->fd, FIONREAD, &waiting); }
            peer.hang_up();
        });
    }

    // Leaves the line as its last user did.
    void leave(tcflag_t input, tcflag_t output, tcflag_t local) const {
        // With the characters that are orders to a terminal, among them those of the link.
        termios left{};
        const int fresh = open("/dev/ptmx", O_RDWR | O_NOCTTY);
        ASSERT_EQ(tcgetattr(fresh, &left), 0);
        close(fresh);
        ASSERT_EQ(left.c_cc[VSTOP], '\x13');
        left.c_iflag = input;
        left.c_oflag = output;
        left.c_lflag = local;
        ASSERT_EQ(tcsetattr(port->fd, TCSANOW, &left), 0);
    }

    support::Peer peer;
    KorSerial* port = kor_serial_open(peer.path().c_str());
};

class ConfiguredSerial : public Serial {
protected:
    void SetUp() override { EXPECT_NO_RAISE(kor_serial_config(port, &kConfig)); }
};

// All that tcgetattr tells but the speeds.
std::string as_bytes(const termios& settings) {
    return {reinterpret_cast<const char*>(&settings), offsetof(termios, c_cc) + sizeof settings.c_cc};
}

TEST_F(Serial, OpeningBlocksAndLeavesTheSettings) {
    const termios before = peer.settings();
    KorSerial* opened = nullptr;
    EXPECT_NO_RAISE(opened = kor_serial_open(peer.path().c_str()));
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(fcntl(opened->fd, F_GETFL) & (O_NONBLOCK | O_ACCMODE), O_RDWR);
    EXPECT_EQ(fcntl(opened->fd, F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(as_bytes(peer.settings()), as_bytes(before));
    kor_serial_close(&opened);
    EXPECT_EQ(opened, nullptr);
}

// A process that leads a session without a terminal would get the first one that it opens, and with it the signals of
// the line: SIGHUP when the PIN pad is unplugged.
TEST_F(Serial, OpeningMakesNoControllingTerminal) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        setsid();
        const bool opened = kor_serial_open(peer.path().c_str()) != nullptr;
        const bool none = open("/dev/tty", O_RDWR) < 0 && errno == ENXIO;
        _exit(opened && none ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
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

TEST_F(Serial, TellsForbiddenFromBusy) {
    const support::Peer forbidden;
    ASSERT_EQ(chmod(forbidden.path().c_str(), 0), 0);
    ASSERT_EQ(chmod(peer.path().c_str(), 0666), 0);
    ASSERT_EQ(ioctl(port->fd, TIOCEXCL), 0);
    const uid_t user = geteuid();
    // Root may open everything.
    if (user == 0 && seteuid(65534) != 0) { GTEST_SKIP() << "the system does not let go of root's rights"; }
    EXPECT_RAISES(KOR_RESULT_PERMISSION_DENIED, "Permission denied for port : " + forbidden.path(),
                  kor_serial_open(forbidden.path().c_str()));
    EXPECT_RAISES(KOR_RESULT_DEVICE_BUSY, "Port is busy: " + peer.path(), kor_serial_open(peer.path().c_str()));
    EXPECT_EQ(seteuid(user), 0);
}

// Some flags count only together with others: with IEXTEN, OPOST or ICANON.
TEST_F(Serial, PassesEveryByteBothWaysWhateverThePortWasLeftWith) {
    std::string every;
    for (int byte = 0; byte < 256; ++byte) { every += static_cast<char>(byte); }
    for (tcflag_t flag = 1, all = ~tcflag_t{0}; flag != 0; flag <<= 1) {
        const std::tuple<tcflag_t, tcflag_t, tcflag_t> lines[] = {
            {flag, 0, 0},
            {flag, 0, IEXTEN},
            {0, flag, 0},
            {0, flag | OPOST, 0},
            {0, 0, flag},
            {all, all, all},
            {0, 0, flag | ICANON | ECHO | IEXTEN},
        };
        for (const auto& [input, output, local] : lines) {
            leave(input, output, local);
            EXPECT_NO_RAISE(kor_serial_config(port, &kConfig));
            std::string read(every.size(), '\0');
            peer.send(every).expect(every);
            EXPECT_EQ(kor_serial_read(port, read.data(), read.size()), every.size());
            ASSERT_EQ(support::to_hex(read), support::to_hex(every)) << input << ' ' << output << ' ' << local;
            ASSERT_EQ(kor_serial_available(port), 0U) << input << ' ' << output << ' ' << local;
            EXPECT_NO_RAISE(kor_serial_write(port, every.data(), every.size()));
            peer.settle();
        }
    }
}

// The characters of the flow control do not arrive as long as nobody has switched it off.
TEST_F(Serial, AReadTimeOutAloneLeavesTheFlowControl) {
    leave(IXON | IXOFF | ICRNL, 0, 0);
    EXPECT_NO_RAISE(kor_serial_set_read_timeout(port, 20));
    char bytes[8] = {};
    peer.send("a\x13\x11\rb");
    EXPECT_EQ(kor_serial_read(port, bytes, 3), 3U);
    EXPECT_STREQ(bytes, "a\rb");
    EXPECT_NO_RAISE(kor_serial_set_flow_control(port, 0));
    peer.send("a\x13\x11\rb");
    EXPECT_EQ(kor_serial_read(port, bytes, 5), 5U);
    EXPECT_STREQ(bytes, "a\x13\x11\rb");
}

TEST_F(Serial, ConfigWithOneBadValueAppliesNone) {
    const std::pair<KorSerialConfig, const char*> cases[] = {
        {{9, 1, 9, 0, 9, 3}, "Unsupported baudRate: 1"},       {{9, 9600, 9, 0, 9, 3}, "Unsupported dataBits: 9"},
        {{9, 9600, 8, 0, 9, 3}, "Unsupported stopBits: 0"},    {{9, 9600, 8, 1, 9, 3}, "Unsupported parity: 9"},
        {{9, 9600, 8, 1, 0, 3}, "Unsupported flowControl: 3"},
    };
    const termios before = peer.settings();
    for (const auto& [config, detail] : cases) {
        const support::ReturningRaises raises;
        kor_serial_config(port, &config);
        EXPECT_EQ(raises.all(), support::errors(KOR_RESULT_RUNTIME_ERROR, {detail}));
        EXPECT_EQ(as_bytes(peer.settings()), as_bytes(before)) << detail;
    }
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'config' is NULL", kor_serial_config(port, nullptr));
}

TEST_F(Serial, ConfigAppliesEveryFieldAndASetterLeavesTheOthers) {
    const KorSerialConfig config{
        255, 115200, 8, KOR_SERIAL_STOP_BITS_TWO, KOR_SERIAL_PARITY_NONE, KOR_SERIAL_FLOW_CONTROL_SOFTWARE};
    EXPECT_NO_RAISE(kor_serial_config(port, &config));
    termios settings = peer.settings();
    EXPECT_EQ(settings.c_cflag & (CSIZE | CSTOPB | CREAD | CLOCAL), tcflag_t{CS8 | CSTOPB | CREAD | CLOCAL});
    EXPECT_EQ(cfgetispeed(&settings), speed_t{B115200});
    EXPECT_EQ(settings.c_cc[VMIN], 0);
    EXPECT_EQ(settings.c_cc[VTIME], 255);
    EXPECT_NO_RAISE(kor_serial_set_read_timeout(port, 3));
    EXPECT_NO_RAISE(kor_serial_set_baud_rate(port, 57600));
    settings = peer.settings();
    EXPECT_EQ(settings.c_cc[VTIME], 3);
    EXPECT_EQ(cfgetospeed(&settings), speed_t{B57600});
    EXPECT_EQ(settings.c_iflag & (IXON | IXOFF), tcflag_t{IXON | IXOFF});
    EXPECT_EQ(settings.c_cflag & CSTOPB, tcflag_t{CSTOPB});
    EXPECT_NO_RAISE(kor_serial_set_stop_bits(port, 1));
    EXPECT_NO_RAISE(kor_serial_set_flow_control(port, 0));
    EXPECT_NO_RAISE(kor_serial_set_parity(port, 1));
    EXPECT_NO_RAISE(kor_serial_set_parity(port, 0));
    EXPECT_NO_RAISE(kor_serial_set_data_bits(port, 8));
    settings = peer.settings();
    EXPECT_EQ(settings.c_iflag & (IXON | IXOFF), 0U);
    EXPECT_EQ(settings.c_cflag & (CSTOPB | PARENB | PARODD | CSIZE), tcflag_t{PARODD | CS8});
}

TEST_F(ConfiguredSerial, ReadStopsShortWhenTheTimeOutExpires) {
    feed("abc");
    char bytes[5] = {};
    const support::Elapsed elapsed;
    EXPECT_EQ(kor_serial_read(port, bytes, sizeof bytes), 3U);
    EXPECT_TRUE(elapsed.between(100ms, 5000ms));
    EXPECT_STREQ(bytes, "abc");
    EXPECT_NO_RAISE(kor_serial_set_read_timeout(port, 0));
    EXPECT_EQ(kor_serial_read(port, bytes, 1), 0U);
    EXPECT_STREQ(bytes, "abc");
    feed("y");
    EXPECT_EQ(kor_serial_read(port, bytes, 1), 1U) << "what is there needs no wait";
}

TEST_F(ConfiguredSerial, TheTimeOutStartsAfreshWithEachArrival) {
    EXPECT_NO_RAISE(kor_serial_set_read_timeout(port, 4));
    for (const char next : "12345"s) { peer.wait(120ms).send({next}); }
    char bytes[6] = {};
    EXPECT_EQ(kor_serial_read(port, bytes, 5), 5U);
    EXPECT_STREQ(bytes, "12345");
}

TEST_F(Serial, AnUnconfiguredReadWaitsAsTheDeviceWasTold) {
    const Signals signals(0);
    peer.wait(50ms).send("z");
    char byte = 0;
    EXPECT_EQ(kor_serial_read(port, &byte, 1), 1U);
    EXPECT_EQ(byte, 'z');
    EXPECT_GT(signals.seen(), 0);
}

TEST_F(ConfiguredSerial, NumbersTravelInTheByteOrderAskedFor) {
    const std::string sent = "\x12\x34\xFE\xFF\x89\x34\x56\x78\xFD\xFF\xFF\xFF"s + "abcd\0"s;
    EXPECT_NO_RAISE(kor_serial_write_ui16(port, 0x1234, 0), kor_serial_write_i16(port, -2, -1),
                    kor_serial_write_ui32(port, 0x89345678, 0), kor_serial_write_i32(port, -3, 1),
                    kor_serial_write_str(port, "ab", false), kor_serial_write_str(port, "cd", true),
                    kor_serial_write_str(port, "", false), kor_serial_write(port, nullptr, 0));
    peer.expect(sent);
    EXPECT_REFUSED(KOR_RESULT_ILLEGAL_ARGUMENT, "'text' is NULL", kor_serial_write_str(port, nullptr, true));
    feed(sent.substr(0, 12) + "\x12\x34\x56");
    EXPECT_EQ(kor_serial_read_ui16(port, 0), 0x1234);
    EXPECT_EQ(kor_serial_read_i16(port, 9), -2);
    EXPECT_EQ(kor_serial_read_ui32(port, 0), 0x89345678U);
    EXPECT_EQ(kor_serial_read_i32(port, 1), -3);
    EXPECT_RAISES(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data", kor_serial_read_i32(port, 0));
    feed("\x9A");
    EXPECT_EQ(kor_serial_read_byte(port), 0x9A) << "the bytes of a number cut short are lost";
}

TEST_F(ConfiguredSerial, ReadStrFitsTheTextIntoItsBuffer) {
    const std::tuple<size_t, std::string, std::string> cases[] = {
        {4, "ABCDEF\0"s, "ABC\0...."s}, {4, "ABC\0"s, "ABC\0...."s}, {8, "ABC\0"s, "ABC\0...."s},
        {4, "\0"s, "\0......."s},       {1, "ABC\0"s, "\0......."s}, {0, "ABC\0"s, "........"s},
    };
    for (const auto& [size, sent, left] : cases) {
        feed(sent + "!");
        std::string buffer(8, '.');
        EXPECT_EQ(kor_serial_read_str(port, buffer.data(), size), buffer.data());
        EXPECT_EQ(buffer, left);
        EXPECT_EQ(kor_serial_read_byte(port), '!') << "the text ends at its NUL";
    }
    feed("AB");
    std::string unended(8, '.');
    EXPECT_RAISES(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data",
                  kor_serial_read_str(port, unended.data(), unended.size()));
    EXPECT_EQ(unended, "AB......");
    EXPECT_REFUSED(KOR_RESULT_ILLEGAL_ARGUMENT, "'buffer' is NULL", kor_serial_read_str(port, nullptr, 8));
}

TEST_F(ConfiguredSerial, PurgeDiscardsTheQueueThatItNames) {
    for (const auto& [type, left] : {std::pair(KOR_SERIAL_PURGE_OUTPUT, 3U), std::pair(KOR_SERIAL_PURGE_INPUT, 0U),
                                     std::pair(KOR_SERIAL_PURGE_BOTH, 0U)}) {
        feed("abc");
        EXPECT_EQ(kor_serial_available(port), 3U);
        kor_serial_purge(port, type);
        EXPECT_EQ(kor_serial_available(port), left);
        tcflush(port->fd, TCIFLUSH);
    }
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "Unsupported purgeType: 3", kor_serial_purge(port, 3));
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "Unsupported purgeType: -1", kor_serial_purge(port, -1));
}

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
    for (size_t i = 0; i < sent.size(); i += 2000) { peer.wait(1ms).expect(sent.substr(i, 2000)); }
    const Signals signals(GetParam());
    EXPECT_NO_RAISE(kor_serial_write(port, sent.data(), sent.size()));
    EXPECT_GT(signals.seen(), 5);
}

INSTANTIATE_TEST_SUITE_P(Signals, InterruptedSerial, testing::Values(0, SA_RESTART),
                         [](const auto& test) { return test.param == 0 ? "Interrupting" : "Restarting"; });

TEST_F(ConfiguredSerial, AHangUpEndsAWaitAndIsAnErrorFromThenOn) {
    EXPECT_NO_RAISE(kor_serial_set_read_timeout(port, 255));
    const support::Elapsed elapsed;
    peer.wait(50ms).hang_up();
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "read() error: 5", kor_serial_read_byte(port));
    char byte = 0;
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "read() error: 5", kor_serial_read(port, &byte, 1));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "read() error: 5", kor_serial_read_str(port, &byte, 1));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "tcdrain() error: 5", kor_serial_write_byte(port, 1));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "tcflush() error: 5", kor_serial_purge(port, KOR_SERIAL_PURGE_BOTH));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "ioctl(FIONREAD) error: 5", kor_serial_available(port));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "tcgetattr() error: 5", kor_serial_set_read_timeout(port, 1));
    EXPECT_TRUE(elapsed.between(50ms, 20'000ms)) << "no time-out was waited for";
    const support::ReturningRaises raises;
    EXPECT_EQ(kor_serial_read_byte(port), 0);
    kor_serial_write(port, "abc", 3);
    EXPECT_EQ(raises.all(), support::errors(KOR_RESULT_IO_ERROR, {"read() error: 5", "tcdrain() error: 5"}));
}

TEST_F(ConfiguredSerial, BytesReadBeforeAHangUpAreReturned) {
    EXPECT_NO_RAISE(kor_serial_set_read_timeout(port, 255));
    char bytes[8] = {};
    size_t count = 0;
    feed("abcd");
    std::jthread unplugging = hang_up_once_read();
    EXPECT_NO_RAISE(count = kor_serial_read(port, bytes, sizeof bytes));
    unplugging.join();
    EXPECT_EQ(count, 4U);
    EXPECT_STREQ(bytes, "abcd");
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "read() error: 5", kor_serial_read(port, bytes, sizeof bytes));
}

// A number needs all of its bytes: no part of one is kept for later.
TEST_F(ConfiguredSerial, AHangUpInTheMiddleOfANumberIsAnError) {
    EXPECT_NO_RAISE(kor_serial_set_read_timeout(port, 255));
    feed("ab");
    const std::jthread unplugging = hang_up_once_read();
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "read() error: 5", kor_serial_read_ui32(port, 0));
}

// A descriptor without the right to write drains all the same.
TEST_F(ConfiguredSerial, ABadDescriptorIsReportedWithItsOwnNumber) {
    const int fd = open(peer.path().c_str(), O_RDONLY | O_NOCTTY);
    ASSERT_EQ(dup3(fd, port->fd, O_CLOEXEC), port->fd);
    close(fd);
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "write() error: 9", kor_serial_write_byte(port, 1));
    close(port->fd);
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "read() error: 9", kor_serial_read_byte(port));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "close() error: 9", kor_serial_close(&port));
    EXPECT_EQ(port, nullptr);
}

class SerialList : public testing::Test {
protected:
    [[nodiscard]] support::Raised list(const std::string& directory) const {
        const char* path = directory.c_str();
        return support::raised_by([&] { kor::list_serial_ports(path, out); });
    }

    support::Peer line;
    const TempDir dir;
    const Owned<KorList, kor_string_list_delete> out{kor_string_list_new()};
};

TEST_F(SerialList, TakesTheUsablePortsWithPortNames) {
    std::vector<std::string> expected;
    for (const char* name :
         {"a.tty.usbserial-1", "tty.serial", "tty.usbmodem14", "ttyACM3", "ttyS0", "ttyUSB12", "tty_usbserial"}) {
        expected.push_back(dir.link(name, line.path()));
    }
    for (const char* stranger :
         {"tty", "tty1", "ttyprintk", "xttyS0", "TTYS0", "cu.usbserial", "ttyserial", "usbmodem"}) {
        dir.link(stranger, line.path());
    }
    dir.file("ttyS1");
    dir.dir("ttyS2");
    dir.link("ttyS3", dir / "nowhere");
    dir.link("ttyS4", "/dev/null");
    dir.link("ttyS5", dir / "ttyS5");
    dir.link("stdin", dir / "nowhere");
    const size_t descriptors = open_descriptors();
    EXPECT_EQ(list(dir / ""), support::Raised{});
    EXPECT_EQ(sorted(out), expected);
    EXPECT_EQ(open_descriptors(), descriptors);
    EXPECT_EQ(list(dir / ""), support::Raised{});
    EXPECT_EQ(kor_string_list_size(out), 2 * expected.size()) << "the second listing is appended to the first";
}

TEST_F(SerialList, LeavesOutWhatItCannotReach) {
    const std::string tooDeep = dir.dir(std::string(120, 'd')) + "/";
    std::filesystem::create_symlink(line.path(), tooDeep + "ttyS0");
    for (const std::string& path : {tooDeep, dir / "missing/", dir.file("file")}) {
        EXPECT_EQ(list(path), support::Raised{});
        EXPECT_EQ(kor_string_list_size(out), 0U);
    }
}

TEST_F(SerialList, ExhaustionKeepsNothingOpenOrAllocated) {
    dir.link("ttyS0", line.path());
    const std::string directory = dir / "";
    // What is made once and kept is made here: the expression and the frames.
    EXPECT_EQ(list(directory), support::Raised{});
    kor_string_list_clear(out);
    const size_t descriptors = open_descriptors();
    for (size_t n = 1;; ++n) {
        const support::FailingMalloc failing(n);
        const support::Raised raised = list(directory);
        const bool listed = kor_string_list_size(out) == 1;
        kor_string_list_clear(out);
        EXPECT_EQ(failing.kept(), 0U) << "allocation " << n;
        EXPECT_EQ(open_descriptors(), descriptors) << "allocation " << n;
        EXPECT_EQ(listed, !failing.failed()) << "allocation " << n;
        if (!failing.failed()) { break; }
        // The port's own handle is the exception: what cannot be opened is left out.
        if (raised.code != KOR_RESULT_OK) { EXPECT_EQ(raised, support::error(KOR_RESULT_MALLOC_ERROR, "")); }
    }
}

TEST_F(SerialList, ListsTheDevicesOfTheSystem) {
    EXPECT_EQ(kor_serial_list_ports(out), out);
    for (const std::string& path : sorted(out)) { EXPECT_EQ(path.substr(0, 8), "/dev/tty"); }
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", kor_serial_list_ports(nullptr));
}

}  // namespace
