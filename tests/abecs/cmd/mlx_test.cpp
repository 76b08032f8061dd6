// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/mlx.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "quorvel/kor/exception.h"
#include "tests/support/link.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/wire.h"

namespace {

// How much each read of a file has given.
std::vector<size_t> reads;

// How many files were tried to be opened, and what is in their way.
size_t opened = 0;
int openError = 0;

}  // namespace

// This program is linked with -Wl,--wrap=fread,--wrap=fopen.
extern "C" size_t __real_fread(void* to, size_t size, size_t count, FILE* stream);
extern "C" size_t __wrap_fread(void* to, size_t size, size_t count, FILE* stream);
extern "C" FILE* __real_fopen(const char* path, const char* mode);
extern "C" FILE* __wrap_fopen(const char* path, const char* mode);

FILE* __wrap_fopen(const char* path, const char* mode) {
    ++opened;
    if (openError == 0) { return __real_fopen(path, mode); }
    errno = openError;
    return nullptr;
}

size_t __wrap_fread(void* to, size_t size, size_t count, FILE* stream) {
    const size_t given = __real_fread(to, size, count, stream);
    reads.push_back(size * given);
    return given;
}

namespace {

using namespace support::literals;
using support::Link;
namespace fs = std::filesystem;

// Every byte value, and no two blocks alike.
std::string content(size_t size) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i) { bytes[i] = static_cast<char>(i * 7 + (i >> 8)); }
    return bytes;
}

// MLI for "logo" of type 1.
std::string announcement(const std::string& sizeAndCrc) {
    return "MLI026" + "001E 0008"_hex + "LOGO    " + "001F 000A"_hex + sizeAndCrc + "01 000000"_hex;
}

class Mlx : public testing::Test {
protected:
    Mlx() {
        std::string pattern = (fs::temp_directory_path() / "quorvel-mlx-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) { throw std::runtime_error("mkdtemp"); }
        directory_ = pattern;
        path_ = (directory_ / "file").string();
    }
    ~Mlx() override { fs::remove_all(directory_); }

    void write(const std::string& bytes) { std::ofstream(path_, std::ios::binary) << bytes; }

    // The descriptor under which this program has the file open, or -1.
    [[nodiscard]] int descriptor() const {
        for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
            std::error_code gone;
            if (fs::read_symlink(entry, gone) == path_) { return std::stoi(entry.path().filename()); }
        }
        return -1;
    }

    void expect_blocks(const std::string& bytes) {
        for (size_t at = 0; at < bytes.size(); at += 995) {
            const std::string block = bytes.substr(at, 995);
            const size_t size = block.size();
            std::string length = std::to_string(size + 4);
            length.insert(0, 3 - length.size(), '0');
            const std::string head{0, 0x0F, static_cast<char>(size >> 8), static_cast<char>(size & 0xFF)};
            link_.peer.request("MLR" + length + head + block).response("MLR000");
        }
    }

    // Acknowledges `request` and answers it once `act` is done, while the host waits.
    void answer_after(const std::string& request, const std::string& response, const std::function<void()>& act) {
        link_.peer.reply(support::frame(request).size(), [=](const std::string& received) {
            act();
            EXPECT_EQ(received, support::frame(request));
            return "\x06" + support::frame(response);
        });
    }

    void upload() { link_.call(abecs_cmd_mlx)(path_.c_str(), "logo", 1); }

    fs::path directory_;
    std::string path_;
    Link link_;
};

TEST_F(Mlx, SendsFilesInBlocksOf995) {
    const auto sends = [&](size_t size, const std::string& sizeAndCrc) {
        SCOPED_TRACE(size);
        write(content(size));
        link_.peer.request(announcement(sizeAndCrc)).response("MLI000");
        expect_blocks(content(size));
        link_.peer.request("MLE").response("MLE000");
        upload();
        EXPECT_EQ(descriptor(), -1);
    };
    sends(0, "00000000 0000"_hex);
    sends(1, "00000001 0000"_hex);
    sends(995, "000003E3 54C9"_hex);
    sends(996, "000003E4 642A"_hex);
    reads.clear();
    sends(2500, "000009C4 3B8F"_hex);
    EXPECT_EQ(reads, (std::vector<size_t>{512, 512, 512, 512, 452, 995, 995, 510})) << "for the CRC, for the blocks";
    sends(5000, "00001388 5780"_hex);
}

TEST_F(Mlx, CrcOfAFile) {
    const auto crcs = [&](const std::string& bytes, uint16_t expected) {
        write(bytes);
        uint16_t crc = 1;
        EXPECT_NO_RAISE(crc = abecs_cmd_mlx_crc16(path_.c_str()));
        EXPECT_EQ(crc, expected) << bytes.size();
        EXPECT_EQ(descriptor(), -1);
    };
    crcs("", 0);
    crcs("123456789", 0x31C3);
    crcs(content(512), 0xD22E);
    crcs(content(1024), 0x9404);
    crcs("\xFF", 0x1EF0);
}

TEST_F(Mlx, AStatusOtherThanZeroEndsTheLoad) {
    write(content(996));
    const std::string requests[] = {announcement("000003E4 642A"_hex), "MLR999" + "000F 03E3"_hex + content(995),
                                    "MLR005" + "000F 0001"_hex + content(996)[995], "MLE"};
    const auto ends = [&](std::initializer_list<const char*> responses, const char* detail) {
        const std::string* request = requests;
        for (const char* response : responses) { link_.peer.request(*request++).response(response); }
        EXPECT_RAISES(6, detail, abecs_cmd_mlx(link_.comm, path_.c_str(), "logo", 1));
        EXPECT_EQ(descriptor(), -1) << detail;
    };
    ends({"MLI011"}, "MLI returned ABECS_RSP_STAT_ST_INVPARM");
    ends({"ERR010"}, "MLI returned ABECS_RSP_STAT_ST_INVCALL");
    ends({"MLI000", "MLR102"}, "MLR returned ABECS_RSP_STAT_ST_MFERR");
    ends({"MLI000", "MLR000", "MLR040"}, "MLR returned ABECS_RSP_STAT_ST_INTERR");
    ends({"MLI000", "MLR000", "MLR000", "MLE101"}, "MLE returned ABECS_RSP_STAT_ST_MFERRFMT");
}

TEST_F(Mlx, AFileThatShrinksEndsTheLoad) {
    write(content(5000));
    answer_after(announcement("00001388 5780"_hex), "MLI000", [this] { fs::resize_file(path_, 4990); });
    expect_blocks(content(4990));
    EXPECT_RAISES(2, "'szData' is zero", abecs_cmd_mlx(link_.comm, path_.c_str(), "logo", 1));
    EXPECT_EQ(descriptor(), -1);
}

TEST_F(Mlx, OfAFileThatGrowsOnlyWhatWasAnnouncedIsSent) {
    write(content(996));
    answer_after(announcement("000003E4 642A"_hex), "MLI000", [this] { fs::resize_file(path_, 10000); });
    expect_blocks(content(996));
    link_.peer.request("MLE").response("MLE000");
    upload();
}

// The descriptor is taken away under the library, so that reading and closing fail.
TEST_F(Mlx, AFailingCloseDoesNotHideTheErrorBeforeIt) {
    const auto fails = [&](const std::string& response, int16_t code, const char* detail) {
        write(content(5000));
        answer_after(announcement("00001388 5780"_hex), response, [this] { EXPECT_EQ(close(descriptor()), 0); });
        EXPECT_RAISES(code, detail, abecs_cmd_mlx(link_.comm, path_.c_str(), "logo", 1));
    };
    fails("MLI011", 6, "MLI returned ABECS_RSP_STAT_ST_INVPARM");
    fails("XYZ000", 12, "(MLI) Invalid RSP_ID: XYZ)");
    fails("MLI000", 6, "fread() error: 9");
    write("");
    link_.peer.request(announcement("00000000 0000"_hex)).response("MLI000");
    answer_after("MLE", "MLE000", [this] { EXPECT_EQ(close(descriptor()), 0); });
    EXPECT_RAISES(6, "fclose() error: 9", abecs_cmd_mlx(link_.comm, path_.c_str(), "logo", 1));
    EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
}

TEST_F(Mlx, RefusesWhatCannotBeSent) {
    const char* path = path_.c_str();
    const char* missing = "'to' and 'format' points to the same buffer";
    const auto refused = [&](int16_t code, const char* detail, const char* from, const char* name) {
        EXPECT_RAISES(code, detail, abecs_cmd_mlx(link_.comm, from, name, 1));
    };
    refused(2, "'path' is NULL", nullptr, nullptr);
    refused(2, missing, path, nullptr);
    EXPECT_RAISES(2, missing, abecs_cmd_mlx_crc16(path));
    write("x");
    refused(2, "'filename' is empty", path, "");
    refused(2, "'filename' is too long (max: 8, requested: 9)", path, "NINECHARS");
    EXPECT_EQ(descriptor(), -1);
}

// A device may never end, and a pipe waits for its other end when it is opened.
TEST_F(Mlx, OpensNothingButRegularFiles) {
    ASSERT_EQ(mkfifo((directory_ / "pipe").c_str(), 0600), 0);
    fs::create_symlink("/dev/null", directory_ / "device");
    opened = 0;
    for (const std::string& path : {directory_.string(), (directory_ / "pipe").string(),
                                    (directory_ / "device").string(), std::string("/dev/zero")}) {
        const char* detail = "'path' is not a regular file";
        EXPECT_RAISES(2, detail, abecs_cmd_mlx(link_.comm, path.c_str(), nullptr, 1)) << path;
        EXPECT_RAISES(2, detail, abecs_cmd_mlx_crc16(path.c_str())) << path;
    }
    EXPECT_EQ(opened, 0U);
    write("123456789");
    fs::create_symlink(path_, directory_ / "link");
    EXPECT_EQ(abecs_cmd_mlx_crc16((directory_ / "link").c_str()), 0x31C3);
    const std::string inside = path_ + "/inside";
    EXPECT_RAISES(2, "'to' and 'format' points to the same buffer", abecs_cmd_mlx_crc16(inside.c_str()));
}

TEST_F(Mlx, MemoryThatEndsIsNoMissingFile) {
    write("x");
    const auto ends = [&] {
        EXPECT_RAISES(KOR_RESULT_MALLOC_ERROR, "", abecs_cmd_mlx(link_.comm, path_.c_str(), "logo", 1));
        EXPECT_RAISES(KOR_RESULT_MALLOC_ERROR, "", abecs_cmd_mlx_crc16(path_.c_str()));
    };
    openError = ENOMEM;
    ends();
    openError = EMFILE;
    EXPECT_RAISES(2, "'to' and 'format' points to the same buffer", abecs_cmd_mlx_crc16(path_.c_str()));
    openError = 0;
    const support::FailingMalloc failing(1);
    EXPECT_RAISES(KOR_RESULT_MALLOC_ERROR, "", abecs_cmd_mlx_crc16(path_.c_str()));
    EXPECT_EQ(failing.kept(), 0U);
}

TEST_F(Mlx, RefusesFilesWhoseSizeDoesNotFit) {
    write("");
    for (const auto& [size, shown] : {std::pair{uintmax_t{1} << 32, "4294967296"}, {0x1400000001, "85899345921"}}) {
        fs::resize_file(path_, size);
        const std::string detail = "File (" + path_ + ") is too big (max: 4294967295, req: " + shown + ")";
        EXPECT_RAISES(6, detail, abecs_cmd_mlx(link_.comm, path_.c_str(), "logo", 1));
        EXPECT_EQ(descriptor(), -1);
    }
}

TEST_F(Mlx, RaisesOnceWhenTheRaiseReturns) {
    write("x");
    link_.peer.request(announcement("00000001 FF9F"_hex)).response("MLI011");
    const support::ReturningRaises handler;
    abecs_cmd_mlx(link_.comm, nullptr, "logo", 1);
    abecs_cmd_mlx(link_.comm, path_.c_str(), nullptr, 1);
    abecs_cmd_mlx(link_.comm, path_.c_str(), "logo", 1);
    EXPECT_EQ(abecs_cmd_mlx_crc16("/"), 0);
    EXPECT_EQ(abecs_cmd_mlx_crc16((path_ + "/inside").c_str()), 0);
    ASSERT_EQ(handler.all().size(), 5U);
    EXPECT_EQ(handler.all()[1], support::error(2, "'filename' is NULL"));
    EXPECT_EQ(handler.all()[2], support::error(6, "MLI returned ABECS_RSP_STAT_ST_INVPARM"));
    EXPECT_EQ(descriptor(), -1);
}

}  // namespace
