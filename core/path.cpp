// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/path.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/attempt.h"
#include "core/check.h"
#include "core/raise.h"
#include "quorvel/kor/string.h"
#include "quorvel/kor/string_list.h"

using namespace kor;

namespace {

// 0, or errno of what failed. A path of none is a bad address to the system, and must not get as far in the C library.
int get_status(const char* path, struct stat& status) {
    if (path == nullptr) { return EFAULT; }
    return stat(path, &status) == 0 ? 0 : errno;
}

// False after it raised.
bool read_status(const char* path, struct stat& status) {
    const int error = get_status(path, status);
    if (error == ENOENT) { return raise(KOR_RESULT_FILE_NOT_FOUND, "File not found: %s", path), false; }
    if (error != 0) { return raise(KOR_RESULT_IO_ERROR, "stat() error: %d", error), false; }
    return true;
}

bool is_known_dir(const char* path) {
    struct stat status {};
    return get_status(path, status) == 0 && S_ISDIR(status.st_mode);
}

bool is_entry(const char* name) { return std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0; }

// Appends the names until there are no more; gives errno as readdir() left it at the end.
int append_entries(DIR* directory, KorList* out) {
    for (;;) {
        // The end and a failure look alike but for errno.
        errno = 0;
        const dirent* entry = readdir(directory);
        if (entry == nullptr) { return errno; }
        if (is_entry(entry->d_name)) { kor_string_list_append(out, entry->d_name); }
    }
}

}  // namespace

char* kor_path_cwd(char* outBuf, size_t size) {
    if (refuse_null(outBuf, "'outBuf' is NULL")) { return nullptr; }
    if (getcwd(outBuf, size) == nullptr) { return raise(KOR_RESULT_IO_ERROR, "getcwd() error: %d", errno), nullptr; }
    return outBuf;
}

const char* kor_path_name(const char* path) {
    const char* slash = kor_string_find_last("/", path);
    return slash != nullptr ? slash + 1 : path;
}

const char* kor_path_lextension(const char* path, bool allowDir) {
    if (refuse_if(!allowDir && is_known_dir(path), "Path is a dir: %s", path)) { return ""; }
    const char* name = kor_path_name(path);
    const char* dot = name != nullptr ? std::strchr(name, '.') : nullptr;
    return dot != nullptr ? dot + 1 : "";
}

const char* kor_path_extension(const char* path) { return kor_path_lextension(path, false); }

bool kor_path_exists(const char* path) {
    struct stat status {};
    const int error = get_status(path, status);
    if (error != 0 && error != ENOENT) { raise(KOR_RESULT_IO_ERROR, "stat() error: %d", error); }
    return error == 0;
}

bool kor_path_is_dir(const char* path) {
    struct stat status {};
    return read_status(path, status) && S_ISDIR(status.st_mode);
}

bool kor_path_is_file(const char* path) {
    struct stat status {};
    return read_status(path, status) && S_ISREG(status.st_mode);
}

uint64_t kor_path_file_size(const char* path) {
    struct stat status {};
    return read_status(path, status) ? static_cast<uint64_t>(status.st_size) : 0;
}

int64_t kor_path_last_modified(const char* path) {
    struct stat status {};
    if (!read_status(path, status)) { return 0; }
    return int64_t{status.st_mtim.tv_sec} * 1000 + status.st_mtim.tv_nsec / 1'000'000;
}

KorList* kor_path_list_entries(const char* path, KorList* out) {
    if (refuse_null(out, "'out' is NULL")) { return nullptr; }
    struct stat status {};
    if (!read_status(path, status)) { return out; }
    if (!S_ISDIR(status.st_mode)) { return raise(KOR_RESULT_IO_ERROR, "Path is not a dir: %s", path), out; }
    kor_string_list_clear(out);
    DIR* directory = opendir(path);
    if (directory == nullptr) { return raise(KOR_RESULT_IO_ERROR, "opendir() error: "), out; }
    int error = 0;
    attempt([&] { error = append_entries(directory, out); }).cleanup([&] { closedir(directory); }).run();
    if (error == EBADF) { raise(KOR_RESULT_IO_ERROR, "readdir() error: "); }
    return out;
}
