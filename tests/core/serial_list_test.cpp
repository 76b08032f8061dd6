// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "core/serial.h"
#include "quorvel/kor/string_list.h"
#include "tests/core/owned.h"
#include "tests/core/temp_dir.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/peer.h"
#include "tests/support/raised.h"

namespace {

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
