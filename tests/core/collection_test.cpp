// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/collection.h"

#include "core/attempt.h"
#include "quorvel/kor/map.h"
#include "quorvel/kor/string_list.h"
#include "quorvel/kor/string_set.h"
#include "tests/core/counted.h"
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

// The text may be the record's own, which a copy must find as it was; that of a map's new value is made in a block.
TEST(Collection, StoresTheErrorThatIsBeingHandled) {
    KorList* list = kor_string_list_new();
    KorSet* set = kor_string_set_new(2);
    KorMap* map = counted::new_map(2);
    const auto store = [&](const char* key) {
        kor_string_list_append(list, kor_exception_get_message());
        kor_string_set_put(set, kor_exception_get_message());
        kor_map_put(map, key, kor_exception_get_message());
    };
    for (const char* text : {"first", "second"}) {
        const auto fail = [&] { kor_exception_throw(KOR_RESULT_IO_ERROR, text); };
        kor::attempt(fail).on_any([&] { store("caught"); }).cleanup([&] { store("clean-up"); }).run();
    }
    EXPECT_EQ(counted::items(list), "first first second second ");
    EXPECT_EQ(counted::entries(map), "clean-up=second caught=second ");
    EXPECT_TRUE(kor_string_set_contains(set, "first") && kor_string_set_contains(set, "second"));
    kor_list_delete(&list);
    kor_set_delete(&set);
    kor_map_delete(&map);
}

}  // namespace
