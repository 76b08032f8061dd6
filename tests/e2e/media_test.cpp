// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "tests/core/temp_dir.h"
#include "tests/e2e/fixture.h"

namespace {

using namespace quorvel::sim;

class MediaFiles : public EndToEnd {
protected:
    // How many frames it took.
    std::ptrdiff_t upload(const std::string& content, const char* name) {
        const std::string path = directory_.file("file", content);
        const auto before = frames();
        EXPECT_NO_RAISE(abecs_cmd_mlx(link_, path.c_str(), name, 1));
        return frames() - before;
    }

    [[nodiscard]] std::ptrdiff_t frames() const {
        return std::ranges::count(pinPad_.traffic(), Sender::kHost, &Traffic::sender);
    }

    TempDir directory_;
};

TEST_F(MediaFiles, ArriveByteByByteInAsManyFramesAsTheyNeed) {
    std::string content(65536, '\0');
    for (size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i * 7 + (i >> 8));
    const std::string blocks = content.substr(0, 9950);
    // MLI, the blocks of 995 bytes and MLE.
    EXPECT_EQ(upload(blocks, "blocks"), 1 + 10 + 1);
    EXPECT_EQ(upload(content, "logo"), 1 + 66 + 1);
    const Media::Files due{{"BLOCKS", {1, to_bytes(blocks)}}, {"LOGO", {1, to_bytes(content)}}};
    EXPECT_EQ(retire().media.files(), due);
}

TEST_F(MediaFiles, AreListedShownAndDeleted) {
    KorList* list = nullptr;
    EXPECT_NO_RAISE(list = kor_string_list_new());
    upload("x", "logo");
    upload("", "empty");
    EXPECT_EQ(call(abecs_cmd_dsi, "logo"), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(pinPad_.screen().media, "LOGO");
    EXPECT_EQ(call(abecs_cmd_lmf, list), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(sorted(list), (std::vector<std::string>{"EMPTY", "LOGO"}));
    EXPECT_EQ(call(abecs_cmd_dmf, list), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(call(abecs_cmd_lmf, list), ABECS_RSP_STAT_ST_OK);
    EXPECT_EQ(kor_string_list_size(list), 0U);
    EXPECT_EQ(call(abecs_cmd_clx, nullptr, "logo"), ABECS_RSP_STAT_ST_MFNFOUND);
    EXPECT_NO_RAISE(kor_string_list_delete(&list));
    EXPECT_EQ(retire().media.files(), Media::Files{});
}

}  // namespace
