// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <tuple>

#include "tests/core/temp_dir.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/raised.h"

namespace {

constexpr const char* kNotOpened = "'to' and 'format' points to the same buffer";

class File : public testing::Test {
protected:
    ~File() override { kor_file_close(&file); }

    void open(const std::string& path, const char* mode) {
        file = kor_file_open(path.c_str(), mode);
        ASSERT_NE(file, nullptr);
    }

    std::string read(size_t size, bool* atEnd) {
        std::string bytes(size, '.');
        bytes.resize(kor_file_read(file, bytes.data(), size, atEnd));
        return bytes;
    }

    TempDir dir;
    KorFile* file = nullptr;
};

std::string content(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

TEST_F(File, TheEndIsMetByTheReadThatAsksForMore) {
    open(dir.file("six", std::string("ab\0\ncd", 6)), "rb");
    bool atEnd = true;
    EXPECT_EQ(read(4, &atEnd), std::string("ab\0\n", 4));
    EXPECT_FALSE(atEnd);
    EXPECT_EQ(read(2, &atEnd), "cd");
    EXPECT_FALSE(atEnd) << "all there is was read, but nothing more was asked for";
    EXPECT_EQ(read(4, &atEnd), "") << "and it is no failure";
    EXPECT_TRUE(atEnd);
    EXPECT_EQ(read(4, nullptr), "");
}

TEST_F(File, SeeksFromEachOriginAndTakesOthersForTheEnd) {
    open(dir.file("ten", "0123456789"), "rb");
    const std::tuple<int64_t, int32_t, const char*> cases[] = {
        {4, KOR_FILE_ORIGIN_START, "4"},
        {2, KOR_FILE_ORIGIN_CURRENT, "7"},
        {-3, KOR_FILE_ORIGIN_CURRENT, "5"},
        {-1, KOR_FILE_ORIGIN_END, "9"},
        {-2, 3, "8"},
        {-3, -1, "7"},
    };
    for (const auto& [offset, origin, next] : cases) {
        kor_file_seek(file, offset, origin);
        EXPECT_EQ(read(1, nullptr), next);
    }
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "fseek() error: 22", kor_file_seek(file, -1, KOR_FILE_ORIGIN_START));
}

TEST_F(File, FlushHandsOverWhatCloseWouldHave) {
    const std::string path = dir / "written";
    open(path, "wb");
    EXPECT_NO_RAISE(kor_file_write(file, "a\0b", 3));
    EXPECT_NO_RAISE(kor_file_flush(file));
    EXPECT_EQ(content(path), std::string("a\0b", 3));
    EXPECT_NO_RAISE(kor_file_write(file, "c", 1));
    EXPECT_NO_RAISE(kor_file_close(&file));
    EXPECT_EQ(file, nullptr);
    EXPECT_EQ(content(path), std::string("a\0bc", 4));
}

TEST_F(File, WhatCannotBeOpenedHasOneErrorAndLeavesNothing) {
    const std::string missing = dir / "missing %s";
    const std::string folder = dir.dir("folder");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, kNotOpened, kor_file_open(missing.c_str(), "rb"));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, kNotOpened, kor_file_open(folder.c_str(), "wb"));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'mode' is NULL", kor_file_open(missing.c_str(), nullptr));
    const size_t descriptors = open_descriptors();
    {
        const support::FailingMalloc failing(1);
        EXPECT_RAISES(KOR_RESULT_MALLOC_ERROR, "", kor_file_open("/dev/null", "rb"));
        EXPECT_EQ(failing.kept(), 0U);
    }
    EXPECT_EQ(open_descriptors(), descriptors);
    const support::ReturningRaises raises;
    EXPECT_EQ(kor_file_open(missing.c_str(), "rb"), nullptr);
    EXPECT_EQ(raises.all(), support::errors(KOR_RESULT_ILLEGAL_ARGUMENT, {kNotOpened}));
}

// And everything else that the mode asks for holds. A character set is asked for that does not exist, because the C
// library leaks a little for one that does.
TEST_F(File, NoProgramThatAChildStartsHasItOpen) {
    const std::string path = dir.file("file", "abc");
    for (const char* mode : {"r", "rb", "re", "rbe", "r+bmce", "a+", "rb,nothing", "w"}) {
        open(path, mode);
        EXPECT_EQ(fcntl(descriptor_of(path), F_GETFD), FD_CLOEXEC) << mode;
        EXPECT_NO_RAISE(kor_file_close(&file));
    }
    for (const char* mode : {"", "e", "wx", "w+bxmc", "wxe", "r,ccs=NO-SUCH-SET"}) {
        EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, kNotOpened, kor_file_open(path.c_str(), mode)) << mode;
    }
    EXPECT_EQ(content(path), "");
    open(path, "r+b");
    EXPECT_NO_RAISE(kor_file_write(file, "y", 1));
}

TEST_F(File, AFailedReadOrWriteIsReported) {
    open(dir.dir("folder"), "rb");
    char byte = 0;
    bool atEnd = true;
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "fread() error: 21", kor_file_read(file, &byte, 1, &atEnd));
    EXPECT_FALSE(atEnd);
    EXPECT_NO_RAISE(kor_file_read(file, &byte, 0, nullptr));
    EXPECT_NO_RAISE(kor_file_close(&file));
    open(dir.file("file", "abc"), "rb");
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "fwrite() error: 9", kor_file_write(file, "x", 1));
    EXPECT_NO_RAISE(kor_file_write(file, "", 0));
    EXPECT_EQ(read(100, &atEnd), "abc") << "a failed write does not spoil the next read";
    EXPECT_TRUE(atEnd);
}

TEST_F(File, AFullDeviceIsReportedWhereTheBytesGoOut) {
    open("/dev/full", "wb");
    EXPECT_NO_RAISE(kor_file_write(file, "abc", 3));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "fclose() error: 28", kor_file_close(&file));
    EXPECT_EQ(file, nullptr) << "gone although it could not be written out";
    open("/dev/full", "wb");
    EXPECT_NO_RAISE(kor_file_write(file, "abc", 3));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "fflush() error: 28", kor_file_flush(file));
    const std::string much(100'000, 'x');
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "fwrite() error: 28", kor_file_write(file, much.data(), much.size()));
}

}  // namespace
