// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/list.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "quorvel/kor/string_list.h"
#include "tests/core/counted.h"
#include "tests/core/owned.h"
#include "tests/support/raised.h"

namespace {

using counted::items;
using List = Owned<KorList, kor_list_delete>;

std::string text_of(const KorListNode* node) { return counted::text_of(kor_list_item(node)); }

std::string backwards(const KorList* list) {
    std::string all;
    for (KorListNode* n = kor_list_last(list); n != nullptr; n = kor_list_previous(n)) { all += text_of(n) + " "; }
    return all;
}

KorList* filled(const std::vector<const char*>& texts) {
    counted::reset();
    KorList* list = kor_list_new(counted::copy, counted::destroy, [](const void* stored, const void* sought) {
        return stored != nullptr && sought != nullptr && counted::equals(stored, sought);
    });
    for (const char* item : texts) { EXPECT_EQ(text_of(kor_list_append(list, item)), item != nullptr ? item : "none"); }
    return list;
}

TEST(List, RefusesMissingFunctionsInTheirOrder) {
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "itemCpFn is NULL", kor_list_new(nullptr, nullptr, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "itemDelFn is NULL", kor_list_new(counted::copy, nullptr, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "equalsFn is NULL",
                  kor_list_new(counted::copy, counted::destroy, nullptr));
}

TEST(List, TakesFromBothEndsAndStaysLinked) {
    const List list(filled({"a", "b", nullptr, "d"}));
    EXPECT_EQ(items(list), "a b none d ");
    EXPECT_EQ(backwards(list), "d none b a ");
    EXPECT_TRUE(kor_list_poll(list));
    EXPECT_TRUE(kor_list_pop(list));
    EXPECT_EQ(items(list), "b none ");
    EXPECT_EQ(backwards(list), "none b ");
    EXPECT_EQ(kor_list_size(list), 2U);
    EXPECT_EQ(counted::deletions, 2);
    EXPECT_TRUE(kor_list_pop(list));
    EXPECT_EQ(counted::deletions, 2) << "a none item is not deleted";
    EXPECT_TRUE(kor_list_poll(list));
    EXPECT_FALSE(kor_list_poll(list));
    EXPECT_FALSE(kor_list_pop(list));
    EXPECT_EQ(items(list) + backwards(list), "");
    EXPECT_EQ(counted::copies, 3);
    EXPECT_EQ(counted::deletions, 3);
    kor_list_append(list, "again");
    kor_list_clear(list);
    EXPECT_EQ(kor_list_size(list), 0U);
    EXPECT_EQ(counted::deletions, 4);
}

TEST(List, FindsFromBothEnds) {
    const List list(filled({"x", nullptr, "same", "same", "same"}));
    uint32_t index = 99;
    EXPECT_EQ(kor_list_find_last(list, "same", &index), kor_list_last(list));
    EXPECT_EQ(index, 4U);
    EXPECT_NE(kor_list_find_first(list, "same", &index), nullptr);
    EXPECT_EQ(index, 2U);
    EXPECT_EQ(text_of(kor_list_find_first(list, nullptr, &index)), "none");
    EXPECT_EQ(index, 1U);
    EXPECT_EQ(kor_list_find_first(list, "y", &index), nullptr);
    EXPECT_EQ(kor_list_find_last(list, "y", &index), nullptr);
    EXPECT_EQ(index, 1U) << "left alone when nothing matches";
    EXPECT_EQ(kor_list_find_last(list, "x", nullptr), kor_list_first(list));
}

TEST(StringList, FindsTextsWithAndWithoutCase) {
    const List list(kor_string_list_new());
    for (const char* text : {"COM1", "com1", static_cast<const char*>(nullptr), "com2"}) {
        EXPECT_NO_RAISE(kor_string_list_append(list, text));
    }
    const std::tuple<decltype(&kor_string_list_find_first), const char*, bool, std::optional<uint32_t>> rows[] = {
        {kor_string_list_find_first, "com1", true, 0},  {kor_string_list_find_first, "com1", false, 1},
        {kor_string_list_find_last, "Com1", true, 1},   {kor_string_list_find_last, "Com1", false, {}},
        {kor_string_list_find_first, nullptr, true, 2},
    };
    for (const auto& [find, sought, ignoreCase, at] : rows) {
        uint32_t index = 99;
        EXPECT_EQ(find(list, sought, ignoreCase, &index) != nullptr, at.has_value());
        EXPECT_EQ(index, at.value_or(99));
    }
}

}  // namespace
