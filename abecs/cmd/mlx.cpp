// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/mlx.h"

#include <algorithm>
#include <sys/stat.h>

#include "abecs/cmd/media.h"
#include "abecs/comm/comm.h"
#include "core/attempt.h"
#include "core/check.h"
#include "core/file.h"
#include "core/raise.h"
#include "quorvel/abecs/cmd/mle.h"
#include "quorvel/abecs/cmd/mli.h"
#include "quorvel/abecs/cmd/mlr.h"
#include "quorvel/abecs/crc16.h"
#include "quorvel/abecs/rsp_stat.h"
#include "quorvel/kor/path.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr uint64_t kMaxFile = UINT32_MAX;  // the size is announced in four bytes

// What is there but is no file: a device may never end, and a pipe waits for its other end when it is opened. What
// cannot be looked at cannot be opened either, which is then the error.
bool is_something_else(const char* path) {
    struct stat status {};
    return stat(path, &status) == 0 && !S_ISREG(status.st_mode);
}

KorFile* open(const char* path) {
    if (refuse_null(path, "'path' is NULL") || refuse_if(is_something_else(path), "'path' is not a regular file")) {
        return nullptr;
    }
    return open_file(path, "rb");
}

// Closing may raise too, which would take the place of what `use` raised: that is kept and raised again.
template <typename Use>
void with_file(const char* path, Use&& use) {
    KorFile* file = nullptr;
    KorException first{};
    attempt([&] {
        file = open(path);
        use(file);
    })
        .on_any([&] { kor_exception_throw(KorResult_E{first.error}, first.message); })
        .cleanup([&] {
            first = *kor_exception_get_exception();
            kor_file_close(&file);
        })
        .run();
}

// Of the whole file, which is left at its start.
uint16_t crc_of(KorFile* file) {
    uint8_t block[512];
    uint16_t crc = 0;
    bool atEnd = false;
    kor_file_seek(file, 0, KOR_FILE_ORIGIN_START);
    while (!atEnd) {
        const size_t count = kor_file_read(file, block, sizeof block, &atEnd);
        abecs_crc16(block, count, &crc);
    }
    kor_file_seek(file, 0, KOR_FILE_ORIGIN_START);
    return crc;
}

uint32_t size_of(const char* path) {
    const uint64_t size = kor_path_file_size(path);
    if (size > kMaxFile) {
        return raise(KOR_RESULT_IO_ERROR, "File (%s) is too big (max: %u, req: %llu)", path,
                     static_cast<unsigned>(kMaxFile), static_cast<unsigned long long>(size)),
               0;
    }
    return static_cast<uint32_t>(size);
}

void require_ok(int32_t stat, const char* command) {
    if (stat != ABECS_RSP_STAT_ST_OK) {
        raise(KOR_RESULT_IO_ERROR, "%s returned %s", command, abecs_rsp_stat_to_string(AbecsRspStat_E{stat}));
    }
}

// Never more than was announced, should the file have grown; one that has shrunk gives an empty block in the end,
// which is refused.
void send_blocks(AbecsComm* pinpad, KorFile* file, uint32_t left) {
    uint8_t block[kMaxMediaBlock];
    while (left != 0) {
        const size_t count = kor_file_read(file, block, std::min<size_t>(left, sizeof block), nullptr);
        left -= static_cast<uint32_t>(count);
        require_ok(abecs_cmd_mlr(pinpad, block, count), "MLR");
    }
}

}  // namespace

void abecs_cmd_mlx(AbecsComm* pinpad, const char* path, const char* filename, uint8_t type) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return; }
    with_file(path, [&](KorFile* file) {
        const uint32_t size = size_of(path);
        const uint16_t crc = crc_of(file);
        bool outermost = false;
        attempt([&] {
            outermost = begin_call(pinpad);
            require_ok(abecs_cmd_mli(pinpad, filename, size, crc, type), "MLI");
            send_blocks(pinpad, file, size);
            require_ok(abecs_cmd_mle(pinpad), "MLE");
        }).cleanup([&] {
              end_call(pinpad, outermost);
          }).run();
    });
}

uint16_t abecs_cmd_mlx_crc16(const char* path) {
    uint16_t crc = 0;
    with_file(path, [&](KorFile* file) { crc = crc_of(file); });
    return crc;
}
