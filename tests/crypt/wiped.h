// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_CRYPT_WIPED_H
#define QUORVEL_TESTS_CRYPT_WIPED_H

#include <cstddef>
#include <string>

// What the library wiped and freed, noted at the moment it did so. For programs linked with
// -Wl,--wrap=kor_heap_free,--wrap=explicit_bzero,--wrap=__explicit_bzero_chk.
namespace support {

void forget_wiped();

// True if one explicit_bzero since forget_wiped covered all of it.
bool was_wiped(const void* begin, size_t size);

// True if one explicit_bzero since forget_wiped covered just `size` bytes with these among them.
bool bytes_were_wiped(const std::string& bytes, size_t size);

// True if one explicit_bzero since forget_wiped covered them, whatever else it covered.
bool bytes_were_wiped(const std::string& bytes);

// The content of the block that kor_heap_free got last, as it was then.
const std::string& last_freed();

}  // namespace support

#endif
