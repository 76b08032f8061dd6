// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/collection.h"

#include "tests/support/raised.h"

namespace {

TEST(Collection, HashesTexts) {
    const std::pair<const char*, uint32_t> cases[] = {
        {nullptr, 0},
        {"", 0},
        {"ab", 3105},
        {"\xC3\xA9", 4294965318U},            // the two bytes count as -61 and -87
        {"polygenelubricants", 0x80000000U},  // wraps around
    };
    for (const auto& [text, hash] : cases) { EXPECT_EQ(kor_collection_hash_str(text), hash); }
    EXPECT_EQ(kor_collection_hash_int(-1), 0xFFFFFFFFU);
}

TEST(Collection, ComparesBytesAndNone) {
    const char abc[] = "abc";
    EXPECT_TRUE(kor_collection_equals(nullptr, nullptr, 3));
    EXPECT_FALSE(kor_collection_equals(abc, nullptr, 0));
    EXPECT_FALSE(kor_collection_equals(nullptr, abc, 3));
    EXPECT_TRUE(kor_collection_equals(abc, "abd", 2));
    EXPECT_FALSE(kor_collection_equals(abc, "abd", 3));
}

TEST(Collection, CopiesBytesAndNone) {
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "data is NULL and size != 0", kor_collection_copy(nullptr, 1));
    void* copy = nullptr;
    EXPECT_NO_RAISE(copy = kor_collection_copy(nullptr, 0));
    EXPECT_EQ(copy, nullptr);
    EXPECT_NO_RAISE(copy = kor_collection_copy("abc", 4));
    EXPECT_STREQ(static_cast<char*>(copy), "abc");
    kor_collection_destroy(copy);
    kor_collection_destroy(nullptr);
}

}  // namespace
