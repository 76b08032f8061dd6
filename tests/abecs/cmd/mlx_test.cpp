// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/abecs/cmd/commands.h"
#include "tests/core/temp_dir.h"

namespace {

// How many files were tried to be opened, and what is in their way.
size_t opened = 0;
int openError = 0;

}  // namespace

// This program is linked with -Wl,--wrap=fopen.
extern "C" FILE* __real_fopen(const char* path, const char* mode);
extern "C" FILE* __wrap_fopen(const char* path, const char* mode);

FILE* __wrap_fopen(const char* path, const char* mode) {
    ++opened;
    if (openError == 0) { return __real_fopen(path, mode); }
    errno = openError;
    return nullptr;
}

namespace {

using namespace support;
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
    void write(const std::string& bytes) { directory_.file("file", bytes); }

    void expect_blocks(const std::string& bytes) {
        for (size_t at = 0; at < bytes.size(); at += 995) {
            const std::string block = bytes.substr(at, 995);
            const size_t size = block.size();
            const std::string head{0, 0x0F, static_cast<char>(size >> 8), static_cast<char>(size & 0xFF)};
            link_.peer.request("MLR" + std::to_string(1000 + size + 4).substr(1) + head + block).response("MLR000");
        }
    }

    // Acknowledges `request` and answers it once `act` is done, while the host waits.
    void answer_after(const std::string& request, const std::string& response, const std::function<void()>& act) {
        link_.peer.reply(frame(request).size(), [=](const std::string& received) {
            act();
            EXPECT_EQ(received, frame(request));
            return "\x06" + frame(response);
        });
    }

    // No descriptor is left open.
    void upload(const Raised& expected = {}) {
        EXPECT_EQ(raised_by([this] { abecs_cmd_mlx(link_.comm, path_.c_str(), "logo", 1); }), expected);
        EXPECT_EQ(descriptor_of(path_), -1);
    }

    TempDir directory_;
    std::string path_ = directory_ / "file";
    Link link_;
};

const Raised kMissing = error(kArgument, "'to' and 'format' points to the same buffer");
const Raised kNoMemory = error(KOR_RESULT_MALLOC_ERROR, "");

uint16_t crc_of(const std::string& path, const Raised& expected = {}) {
    uint16_t crc = 1;
    EXPECT_EQ(raised_by([&] { crc = abecs_cmd_mlx_crc16(path.c_str()); }), expected) << path;
    return crc;
}

TEST_F(Mlx, SendsFilesInBlocksOf995) {
    const auto sends = [&](size_t size, const std::string& sizeAndCrc) {
        SCOPED_TRACE(size);
        write(content(size));
        link_.peer.request(announcement(sizeAndCrc)).response("MLI000");
        expect_blocks(content(size));
        link_.peer.request("MLE").response("MLE000");
        upload();
    };
    sends(0, "00000000 0000"_hex);
    sends(995, "000003E3 54C9"_hex);
    sends(996, "000003E4 642A"_hex);
    sends(2500, "000009C4 3B8F"_hex);
}

TEST_F(Mlx, AStatusOtherThanZeroEndsTheLoad) {
    write(content(996));
    const std::string requests[] = {announcement("000003E4 642A"_hex), "MLR999" + "000F 03E3"_hex + content(995),
                                    "MLR005" + "000F 0001"_hex + content(996)[995], "MLE"};
    const auto ends = [&](std::initializer_list<const char*> responses, const std::string& status) {
        const std::string* request = requests;
        for (const char* response : responses) { link_.peer.request(*request++).response(response); }
        upload(error(kIo, (request - 1)->substr(0, 3) + " returned ABECS_RSP_STAT_ST_" + status));
    };
    ends({"MLI011"}, "INVPARM");
    ends({"MLI000", "MLR102"}, "MFERR");
    ends({"MLI000", "MLR000", "MLR000", "MLE101"}, "MFERRFMT");
}

TEST_F(Mlx, OfAFileThatChangesWhatWasAnnouncedIsSent) {
    write(content(5000));
    answer_after(announcement("00001388 5780"_hex), "MLI000", [this] { fs::resize_file(path_, 4990); });
    expect_blocks(content(4990));
    upload(error(kArgument, "'szData' is zero"));
    write(content(996));
    answer_after(announcement("000003E4 642A"_hex), "MLI000", [this] { fs::resize_file(path_, 10000); });
    expect_blocks(content(996));
    link_.peer.request("MLE").response("MLE000");
    upload();
}

// The descriptor is taken away under the library, so that reading and closing fail.
TEST_F(Mlx, AFailingCloseDoesNotHideTheErrorBeforeIt) {
    const auto fails = [&](const std::string& response, const Raised& expected) {
        write(content(5000));
        answer_after(announcement("00001388 5780"_hex), response,
                     [this] { EXPECT_EQ(close(descriptor_of(path_)), 0); });
        upload(expected);
    };
    fails("MLI011", error(kIo, "MLI returned ABECS_RSP_STAT_ST_INVPARM"));
    fails("MLI000", error(kIo, "fread() error: 9"));
    write("");
    link_.peer.request(announcement("00000000 0000"_hex)).response("MLI000");
    answer_after("MLE", "MLE000", [this] { EXPECT_EQ(close(descriptor_of(path_)), 0); });
    upload(error(kIo, "fclose() error: 9"));
}

// A device may never end, and a pipe waits for its other end when it is opened.
TEST_F(Mlx, OpensNothingButRegularFiles) {
    const Raised irregular = error(kArgument, "'path' is not a regular file");
    ASSERT_EQ(mkfifo((directory_ / "pipe").c_str(), 0600), 0);
    opened = 0;
    for (const std::string& path :
         {directory_ / "", directory_ / "pipe", directory_.link("device", "/dev/null"), std::string("/dev/zero")}) {
        refuses(irregular, abecs_cmd_mlx, path.c_str(), nullptr, 1);
        crc_of(path, irregular);
    }
    EXPECT_EQ(opened, 0U);
    write("123456789");
    EXPECT_EQ(crc_of(directory_.link("link", path_)), 0x31C3);
    crc_of(path_ + "/inside", kMissing);
}

TEST_F(Mlx, RefusesWhatCannotBeSent) {
    const char* path = path_.c_str();
    refuses("'path' is NULL", abecs_cmd_mlx, nullptr, nullptr, 1);
    refuses(kMissing, abecs_cmd_mlx, path, nullptr, 1);
    crc_of(path, kMissing);
    write("x");
    refuses("'filename' is NULL", abecs_cmd_mlx, path, nullptr, 1);
    refuses("'filename' is too long (max: 8, requested: 9)", abecs_cmd_mlx, path, "NINECHARS", 1);
    EXPECT_EQ(descriptor_of(path_), -1);
    write("");
    fs::resize_file(path_, uintmax_t{1} << 32);
    upload(error(kIo, "File (" + path_ + ") is too big (max: 4294967295, req: 4294967296)"));
}

TEST_F(Mlx, MemoryThatEndsIsNoMissingFile) {
    write("x");
    openError = ENOMEM;
    upload(kNoMemory);
    crc_of(path_, kNoMemory);
    openError = EMFILE;
    crc_of(path_, kMissing);
    openError = 0;
}

}  // namespace
