// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/list.h"

#include <optional>
#include <tuple>

#include "quorvel/kor/string_list.h"
#include "tests/core/counted.h"
#include "tests/core/owned.h"
#include "tests/support/raised.h"

namespace {

using List = Owned<KorList, kor_list_delete>;

// Forwards and backwards.
std::string look(const KorList* list) {
    std::string all = counted::items(list) + "/ ";
    for (KorListNode* n = kor_list_last(list); n != nullptr; n = kor_list_previous(n)) {
        all += counted::text_of(kor_list_item(n)) + " ";
    }
    return all + std::to_string(kor_list_size(list));
}

KorList* filled(std::initializer_list<const char*> texts) {
    counted::reset();
    KorList* list = kor_list_new(counted::copy, counted::destroy, [](const void* stored, const void* sought) {
        return stored != nullptr && sought != nullptr && counted::equals(stored, sought);
    });
    for (const char* text : texts) {
        EXPECT_EQ(counted::text_of(kor_list_item(kor_list_append(list, text))), counted::text_of(text));
    }
    return list;
}

TEST(List, RefusesMissingFunctionsInTheirOrder) {
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "itemDelFn is NULL", kor_list_new(counted::copy, nullptr, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "equalsFn is NULL",
                  kor_list_new(counted::copy, counted::destroy, nullptr));
}

TEST(List, TakesFromBothEndsAndStaysLinked) {
    const List list(filled({"a", "b", nullptr, "d"}));
    EXPECT_EQ(look(list), "a b none d / d none b a 4");
    EXPECT_TRUE(kor_list_poll(list));
    EXPECT_TRUE(kor_list_pop(list));
    EXPECT_EQ(look(list), "b none / none b 2");
    EXPECT_TRUE(kor_list_pop(list));
    EXPECT_EQ(counted::deletions, 2) << "a none item is not deleted";
    EXPECT_TRUE(kor_list_poll(list));
    EXPECT_FALSE(kor_list_poll(list));
    EXPECT_FALSE(kor_list_pop(list));
    EXPECT_EQ(look(list), "/ 0");
    EXPECT_EQ(counted::copies, 3);
    kor_list_append(list, "again");
    kor_list_clear(list);
    EXPECT_EQ(look(list), "/ 0");
    EXPECT_EQ(counted::deletions, 4);
}

TEST(List, FindsFromBothEnds) {
    const List list(filled({"x", nullptr, "same", "same"}));
    uint32_t index = 99;
    EXPECT_EQ(kor_list_find_last(list, "same", &index), kor_list_last(list));
    EXPECT_EQ(index, 3U);
    EXPECT_EQ(counted::text_of(kor_list_item(kor_list_find_first(list, nullptr, &index))), "none");
    EXPECT_EQ(index, 1U);
    EXPECT_EQ(kor_list_find_last(list, "x", nullptr), kor_list_first(list));
}

TEST(StringList, FindsTextsWithAndWithoutCase) {
    const List list(kor_string_list_new());
    for (const char* text : {"COM1", "com1", static_cast<const char*>(nullptr), "com2"}) {
        EXPECT_NO_RAISE(kor_string_list_append(list, text));
    }
    const std::tuple<decltype(&kor_string_list_find_first), const char*, bool, std::optional<uint32_t>> rows[] = {
        {kor_string_list_find_first, "com1", true, 0}, {kor_string_list_find_first, "com1", false, 1},
        {kor_string_list_find_last, "Com1", true, 1},  {kor_string_list_find_last, "Com1", false, {}},
        {kor_string_list_find_first, "y", true, {}},   {kor_string_list_find_first, nullptr, true, 2},
    };
    for (const auto& [find, sought, ignoreCase, at] : rows) {
        uint32_t index = 99;
        EXPECT_EQ(find(list, sought, ignoreCase, &index) != nullptr, at.has_value());
        EXPECT_EQ(index, at.value_or(99)) << "left alone when nothing matches";
    }
}

}  // namespace
