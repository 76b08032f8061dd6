// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/set.h"

#include "core/raise.h"
#include "quorvel/kor/int_set.h"
#include "quorvel/kor/string_set.h"
#include "tests/core/counted.h"
#include "tests/core/owned.h"
#include "tests/support/raised.h"

namespace {

using namespace counted;
using Set = Owned<KorSet, kor_set_delete>;

TEST(Set, RefusesItsArgumentsInTheirOrder) {
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid 'initialCapacity': 1",
                  kor_set_new(1, nullptr, nullptr, nullptr, nullptr));
    size_t given = 0;
    for (const char* missing : {"'itemHashFn'", "'itemEqualsFn'", "'itemCpFn'", "'itemDelFn'"}) {
        EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, std::string(missing) + " is NULL",
                      kor_set_new(2, given > 0 ? hash : nullptr, given > 1 ? equals : nullptr,
                                  given > 2 ? copy : nullptr, nullptr));
        ++given;
    }
    const Set set(kor_int_set_new(2));
    KorSetIterator it{};
    KorIntSetIterator ints{};
    KorIntSetIterator absent{set, 5};
    KorStringSetIterator texts{};
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", kor_set_begin(set, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", kor_int_set_begin(set, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", kor_string_set_begin(set, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'it->set' is NULL", kor_set_next(&it));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'it->intSet' is NULL", kor_int_set_next(&ints));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'it->set' is NULL", kor_string_set_next(&texts));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'it->item' not present in 'it->set'", kor_int_set_next(&absent));
    const support::ReturningRaises raises;
    EXPECT_EQ(kor_int_set_begin(set, nullptr), nullptr);
    EXPECT_EQ(kor_int_set_next(&absent), nullptr);
}

TEST(Set, TakesAnEqualItemOnce) {
    counted::reset();
    const Set set(kor_set_new(2, hash, equals, copy, destroy));
    EXPECT_STREQ(static_cast<char*>(kor_set_put(set, "abc")), "abc");
    EXPECT_EQ(kor_set_put(set, "abc"), nullptr);
    EXPECT_EQ(counted::copies, 1);
    EXPECT_NE(kor_set_put(set, "abd"), nullptr) << "the same hash is not the same item";
    EXPECT_EQ(kor_set_put(set, nullptr), nullptr);
    EXPECT_EQ(kor_set_put(set, nullptr), nullptr);
    EXPECT_TRUE(kor_set_contains(set, nullptr));
    EXPECT_EQ(kor_set_size(set), 3U);
    kor_set_clear(set);
    EXPECT_EQ(counted::deletions, 2);
    EXPECT_FALSE(kor_set_contains(set, "abc"));
}

int hashesLeft = 0;

uint32_t failing_hash(const void* item) {
    if (hashesLeft-- == 0) { kor::raise(KOR_RESULT_TIMEOUT_ERROR, "hash"); }
    return hash(item);
}

// The third item makes the set grow: its own hash is taken, then those of all three for the larger array.
TEST(Set, AHashThatFailsWhileTheSetGrowsChangesNothing) {
    counted::reset();
    hashesLeft = 99;
    const Set set(kor_set_new(4, failing_hash, equals, copy, destroy));
    kor_set_put(set, "a");
    kor_set_put(set, "bb");
    hashesLeft = 3;
    EXPECT_RAISES(KOR_RESULT_TIMEOUT_ERROR, "hash", kor_set_put(set, "ccc"));
    EXPECT_EQ(kor_set_size(set), 2U);
    EXPECT_EQ(kor_set_capacity(set), 4U);
    EXPECT_EQ(counted::copies - counted::deletions, 2);
    const support::ReturningRaises raises;
    hashesLeft = 3;
    EXPECT_EQ(kor_set_put(set, "ccc"), nullptr);
    EXPECT_EQ(raises.all().size(), 1U);
    hashesLeft = 99;
    EXPECT_NE(kor_set_put(set, "ccc"), nullptr);
    EXPECT_EQ(kor_set_capacity(set), 8U);
}

std::string values(const KorSet* set) {
    std::string all;
    KorIntSetIterator position{};
    for (auto* it = kor_int_set_begin(set, &position); it != nullptr; it = kor_int_set_next(it)) {
        all += std::to_string(it->value) + " ";
    }
    return all;
}

// Worked out by hand: 15 and 7 meet in the last of four slots, where 7 wraps to the first; in eight slots 7, moved
// first, takes the last one and 15 wraps.
TEST(IntSet, IteratesInSlotOrderAcrossTheWrap) {
    const Set set(kor_int_set_new(4));
    EXPECT_EQ(*kor_int_set_put(set, 15), 15);
    EXPECT_EQ(*kor_int_set_put(set, 7), 7);
    EXPECT_EQ(values(set), "7 15 ");
    EXPECT_EQ(*kor_int_set_put(set, 1), 1);
    EXPECT_EQ(*kor_int_set_put(set, -1), -1);
    EXPECT_EQ(kor_int_set_put(set, -1), nullptr);
    EXPECT_TRUE(kor_int_set_contains(set, -1));
    EXPECT_FALSE(kor_int_set_contains(set, 23)) << "meets the others' slots, but is not there";
    kor_set_put(set, nullptr);
    EXPECT_EQ(values(set), "15 1 -1 7 ") << "an item that is no number is passed over";
}

TEST(StringSet, TellsTextsApartByCaseAndHoldsNone) {
    const Set set(kor_string_set_new(8));
    EXPECT_STREQ(kor_string_set_put(set, "b"), "b");  // 98, the third slot
    EXPECT_STREQ(kor_string_set_put(set, "B"), "B");  // 66, the third too
    EXPECT_EQ(kor_string_set_put(set, nullptr), nullptr);
    EXPECT_TRUE(kor_string_set_contains(set, "B"));
    EXPECT_FALSE(kor_string_set_contains(set, "c"));
    std::string met;
    KorStringSetIterator position{};
    for (auto* it = kor_string_set_begin(set, &position); it != nullptr; it = kor_string_set_next(it)) {
        met += text_of(it->item) + " ";
    }
    EXPECT_EQ(met, "none b B ");
}

}  // namespace
