// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/path.h"

#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

#include "core/raise.h"
#include "quorvel/kor/heap.h"
#include "quorvel/kor/string.h"
#include "quorvel/kor/string_list.h"
#include "tests/core/owned.h"
#include "tests/core/temp_dir.h"
#include "tests/support/raised.h"

namespace {

class Path : public testing::Test {
protected:
    const TempDir dir;
    const Owned<KorList, kor_string_list_delete> out{kor_string_list_new()};
};

TEST_F(Path, NameAndExtensionAreWorkedOutOfTheText) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"/no/such/a.tar.gz", "a.tar.gz", "tar.gz"},
        {"logo.png", "logo.png", "png"},
        {"/no/such.d/file", "file", ""},
        {".profile", ".profile", "profile"},
        {"/no/such/file.", "file.", ""},
        {"/no/such/", "", ""},
        {"", "", ""},
    };
    for (const auto& [path, name, extension] : cases) {
        EXPECT_STREQ(kor_path_name(path), name) << path;
        EXPECT_STREQ(kor_path_extension(path), extension) << path;
        EXPECT_STREQ(kor_path_lextension(path, true), extension) << path;
    }
    EXPECT_EQ(kor_path_name(nullptr), nullptr);
    EXPECT_STREQ(kor_path_extension(nullptr), "");
}

TEST_F(Path, ADirectoryHasAnExtensionOnlyWhereAllowed) {
    const std::string path = dir.dir("images.d");
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Path is a dir: " + path, kor_path_extension(path.c_str()));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Path is a dir: " + path, kor_path_lextension(path.c_str(), false));
    EXPECT_STREQ(kor_path_lextension(path.c_str(), true), "d");
    // What lies beyond a file cannot be looked at, but its text can.
    EXPECT_STREQ(kor_path_extension((dir.file("file") + "/x.y").c_str()), "y");
}

TEST_F(Path, TellsWhatIsThere) {
    const std::string folder = dir.dir("folder");
    const std::string file = dir.file("file", "12345");
    const std::string link = dir.link("link", file);
    const std::tuple<std::string, bool, bool> cases[] = {
        {folder, true, false}, {file, false, true}, {link, false, true}, {"/dev/null", false, false}};
    for (const auto& [path, isDir, isFile] : cases) {
        EXPECT_TRUE(kor_path_exists(path.c_str())) << path;
        EXPECT_EQ(kor_path_is_dir(path.c_str()), isDir) << path;
        EXPECT_EQ(kor_path_is_file(path.c_str()), isFile) << path;
    }
    EXPECT_EQ(kor_path_file_size(link.c_str()), 5U);
}

TEST_F(Path, SizesAndTimesReachBeyond32Bits) {
    const std::string file = dir.file("sparse");
    EXPECT_EQ(kor_path_file_size(file.c_str()), 0U);
    ASSERT_EQ(truncate(file.c_str(), 5'000'000'000), 0);
    EXPECT_EQ(kor_path_file_size(file.c_str()), 5'000'000'000U);
    const std::array<timespec, 2> times{{{0, 0}, {4'100'000'000, 987'654'321}}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times.data(), 0), 0);
    EXPECT_EQ(kor_path_last_modified(file.c_str()), 4'100'000'000'987);
}

TEST_F(Path, WhatIsMissingIsToldFromWhatCannotBeSeen) {
    const std::string missing = dir / "missing %d";
    const std::string beyond = dir.file("file") + "/beyond";
    const std::string dangling = dir.link("dangling", missing);
    EXPECT_FALSE(kor_path_exists(missing.c_str()));
    EXPECT_FALSE(kor_path_exists(dangling.c_str()));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "stat() error: 20", kor_path_exists(beyond.c_str()));
    const auto expect = [&](const char* path, int16_t code, const std::string& detail) {
        EXPECT_RAISES(code, detail, kor_path_is_dir(path));
        EXPECT_RAISES(code, detail, kor_path_is_file(path));
        EXPECT_RAISES(code, detail, kor_path_file_size(path));
        EXPECT_RAISES(code, detail, kor_path_last_modified(path));
        EXPECT_RAISES(code, detail, kor_path_list_entries(path, out));
    };
    expect(missing.c_str(), KOR_RESULT_FILE_NOT_FOUND, "File not found: " + missing);
    expect(dangling.c_str(), KOR_RESULT_FILE_NOT_FOUND, "File not found: " + dangling);
    expect(beyond.c_str(), KOR_RESULT_IO_ERROR, "stat() error: 20");
}

TEST_F(Path, WorkingDirectoryNeedsRoom) {
    std::array<char, 4096> path{};
    EXPECT_EQ(kor_path_cwd(path.data(), path.size()), path.data());
    EXPECT_EQ(std::string(path.data()), std::filesystem::current_path().string());
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "getcwd() error: 34", kor_path_cwd(path.data(), 1));
}

TEST_F(Path, ReplacesTheListByTheNames) {
    const std::string folder = dir.dir("folder");
    kor_string_list_append(out, "old");
    EXPECT_EQ(kor_path_list_entries(folder.c_str(), out), out);
    EXPECT_EQ(kor_string_list_size(out), 0U);
    dir.file("folder/a");
    dir.file("folder/.hidden");
    dir.file("folder/...");
    dir.dir("folder/sub");
    dir.file("folder/sub/below");
    // A number that an earlier call left behind is no failure of this one.
    errno = EBADF;
    EXPECT_NO_RAISE(kor_path_list_entries(folder.c_str(), out));
    const std::vector<std::string> names{"...", ".hidden", "a", "sub"};
    EXPECT_EQ(sorted(out), names);
    const std::string file = folder + "/a";
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", kor_path_list_entries(file.c_str(), nullptr));
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "Path is not a dir: " + file, kor_path_list_entries(file.c_str(), out));
    EXPECT_EQ(sorted(out), names) << "what is refused leaves the list as it was";
}

TEST_F(Path, ADirectoryThatCannotBeOpenedIsReportedWithoutANumber) {
    const std::string folder = dir / "";
    const NoDescriptors none;
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "opendir() error: ", kor_path_list_entries(folder.c_str(), out));
}

bool equals(const void* lhs, const void* rhs) { return lhs == rhs; }

void* copy_and_fail(const void* /*item*/) { return kor::raise(KOR_RESULT_RUNTIME_ERROR, "no copy"), nullptr; }

// Descriptors are given lowest first, so the directory opened next has this number.
int nextDescriptor = -1;

void* copy_and_close(const void* item) {
    close(nextDescriptor);
    return kor_string_new(static_cast<const char*>(item));
}

TEST_F(Path, AnAppendThatFailsOrClosesTheDirectoryIsReported) {
    dir.file("file");
    const std::string path = dir / "";
    const Owned<KorList, kor_list_delete> failing(kor_list_new(copy_and_fail, kor_heap_free, equals));
    const Owned<KorList, kor_list_delete> closing(kor_list_new(copy_and_close, kor_heap_free, equals));
    const size_t descriptors = open_descriptors();
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "no copy", kor_path_list_entries(path.c_str(), failing));
    EXPECT_EQ(open_descriptors(), descriptors);
    nextDescriptor = dup(STDERR_FILENO);
    close(nextDescriptor);
    EXPECT_RAISES(KOR_RESULT_IO_ERROR, "readdir() error: ", kor_path_list_entries(path.c_str(), closing));
}

}  // namespace
