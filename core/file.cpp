// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "core/file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "core/check.h"
#include "core/raise.h"
#include "quorvel/kor/heap.h"

using namespace kor;

struct KorFile {
    FILE* stream;
};

namespace {

int whence(int32_t origin) {
    switch (origin) {
        case KOR_FILE_ORIGIN_START:
            return SEEK_SET;
        case KOR_FILE_ORIGIN_CURRENT:
            return SEEK_CUR;
        default:
            return SEEK_END;
    }
}

// Writes the mode with an "e" in it, which has the system close the descriptor where a child starts a program. It goes
// behind the first letter: the C library heeds seven characters, and a comma begins the name of a character set.
void write_private_mode(char* to, const char* mode, size_t length) {
    *to = *mode;
    if (length == 0) { return; }
    to[1] = 'e';
    std::memcpy(to + 2, mode + 1, length);
}

enum class NoMemory { kFailure, kMallocError };

KorFile* open(const char* path, const char* mode, NoMemory noMemory) {
    // One block for the object and the mode, which may be of any length.
    const size_t length = std::strlen(mode);
    auto* file = static_cast<KorFile*>(kor_heap_alloc(sizeof(KorFile) + length + 2, 0));
    if (file == nullptr) { return nullptr; }
    auto* privateMode = reinterpret_cast<char*>(file + 1);
    write_private_mode(privateMode, mode, length);
    file->stream = std::fopen(path, privateMode);
    if (file->stream != nullptr) { return file; }
    const int error = errno;
    kor_heap_free(file);
    if (error == ENOMEM && noMemory == NoMemory::kMallocError) {
        return raise(KOR_RESULT_MALLOC_ERROR, nullptr), nullptr;
    }
    // Not the fopen() error: this text is what applications have always been given and test for.
    return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "'to' and 'format' points to the same buffer"), nullptr;
}

}  // namespace

KorFile* kor::open_file(const char* path, const char* mode) { return open(path, mode, NoMemory::kMallocError); }

KorFile* kor_file_open(const char* path, const char* mode) {
    if (refuse_null(path, "'path' is NULL") || refuse_null(mode, "'mode' is NULL")) { return nullptr; }
    return open(path, mode, NoMemory::kFailure);
}

void kor_file_close(KorFile** file) {
    if (file == nullptr || *file == nullptr) { return; }
    FILE* stream = (*file)->stream;
    kor_heap_free(*file);
    *file = nullptr;
    if (std::fclose(stream) != 0) { raise(KOR_RESULT_IO_ERROR, "fclose() error: %d", errno); }
}

size_t kor_file_read(KorFile* file, void* buffer, size_t size, bool* atEnd) {
    if (refuse_null(file, "'file' is NULL")) { return 0; }
    const size_t count = std::fread(buffer, 1, size, file->stream);
    const int error = errno;
    const bool ended = std::feof(file->stream) != 0;
    if (atEnd != nullptr) { *atEnd = ended; }
    // The error mark alone may be left of an earlier failure: at the end of the file it says nothing about this read.
    if (count < size && !ended && std::ferror(file->stream) != 0) {
        raise(KOR_RESULT_IO_ERROR, "fread() error: %d", error);
    }
    return count;
}

void kor_file_write(KorFile* file, const void* bytes, size_t size) {
    if (refuse_null(file, "'file' is NULL")) { return; }
    if (std::fwrite(bytes, 1, size, file->stream) != size) {
        return raise(KOR_RESULT_IO_ERROR, "fwrite() error: %d", errno);
    }
}

void kor_file_flush(KorFile* file) {
    if (refuse_null(file, "'file' is NULL")) { return; }
    if (std::fflush(file->stream) != 0) { raise(KOR_RESULT_IO_ERROR, "fflush() error: %d", errno); }
}

void kor_file_seek(KorFile* file, int64_t offset, int32_t origin) {
    if (refuse_null(file, "'file' is NULL")) { return; }
    if (fseeko(file->stream, static_cast<off_t>(offset), whence(origin)) != 0) {
        raise(KOR_RESULT_IO_ERROR, "fseek() error: %d", errno);
    }
}
