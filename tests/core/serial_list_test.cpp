// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "core/serial.h"
#include "quorvel/kor/string_list.h"
#include "tests/core/line.h"
#include "tests/core/owned.h"
#include "tests/core/temp_dir.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/raised.h"

namespace {

using List = Owned<KorList, kor_string_list_delete>;

std::vector<std::string> sorted(const KorList* list) {
    std::vector<std::string> all;
    for (auto* node = kor_string_list_first(list); node != nullptr; node = kor_string_list_next(node)) {
        all.emplace_back(kor_string_list_item(node));
    }
    std::sort(all.begin(), all.end());
    return all;
}

TEST(SerialList, TakesTheUsablePortsWithPortNames) {
    const Line line;
    const TempDir dir;
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
    const List out(kor_string_list_new());
    const std::string directory = dir / "";
    const size_t descriptors = open_descriptors();
    EXPECT_NO_RAISE(kor::list_serial_ports(directory.c_str(), out));
    EXPECT_EQ(sorted(out), expected);
    EXPECT_EQ(open_descriptors(), descriptors);
    EXPECT_NO_RAISE(kor::list_serial_ports(directory.c_str(), out));
    EXPECT_EQ(kor_string_list_size(out), 2 * expected.size()) << "the second listing is appended to the first";
}

TEST(SerialList, LeavesAPortInUseAsItIs) {
    Line line;
    const TempDir dir;
    dir.link("ttyS0", line.path());
    KorSerial* port = kor_serial_open(line.path().c_str());
    const KorSerialConfig config{50, 19200, 8, 1, 0, 0};
    EXPECT_NO_RAISE(kor_serial_config(port, &config));
    line.feed("kept");
    const List out(kor_string_list_new());
    const std::string directory = dir / "";
    EXPECT_NO_RAISE(kor::list_serial_ports(directory.c_str(), out));
    EXPECT_EQ(kor_string_list_size(out), 1U);
    EXPECT_EQ(line.settings().c_cc[VTIME], 50);
    EXPECT_EQ(kor_serial_available(port), 4U);
    kor_serial_close(&port);
}

TEST(SerialList, APathTooLongForItsRoomIsLeftOut) {
    const Line line;
    const TempDir dir;
    const std::string deep = dir.dir(std::string(120, 'd')) + "/";
    std::filesystem::create_symlink(line.path(), deep + "ttyS0");
    const List out(kor_string_list_new());
    EXPECT_NO_RAISE(kor::list_serial_ports(deep.c_str(), out));
    EXPECT_EQ(kor_string_list_size(out), 0U);
}

TEST(SerialList, WithoutTheDirectoryThereIsNothing) {
    const TempDir dir;
    const List out(kor_string_list_new());
    for (const std::string& path : {dir / "missing/", dir.file("file")}) {
        EXPECT_NO_RAISE(kor::list_serial_ports(path.c_str(), out));
        EXPECT_EQ(kor_string_list_size(out), 0U);
    }
}

TEST(SerialList, ExhaustionKeepsNothingOpenOrAllocated) {
    const Line line;
    const TempDir dir;
    dir.link("ttyS0", line.path());
    const std::string directory = dir / "";
    const List out(kor_string_list_new());
    // What is made once and kept is made here: the expression and the frames.
    EXPECT_NO_RAISE(kor::list_serial_ports(directory.c_str(), out));
    kor_string_list_clear(out);
    const size_t descriptors = open_descriptors();
    for (size_t n = 1;; ++n) {
        const support::FailingMalloc failing(n);
        const support::Raised raised = support::raised_by([&] { kor::list_serial_ports(directory.c_str(), out); });
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

TEST(SerialList, ListsTheDevicesOfTheSystem) {
    const List out(kor_string_list_new());
    EXPECT_EQ(kor_serial_list_ports(out), out);
    for (const std::string& path : sorted(out)) { EXPECT_EQ(path.substr(0, 8), "/dev/tty"); }
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", kor_serial_list_ports(nullptr));
}

}  // namespace
