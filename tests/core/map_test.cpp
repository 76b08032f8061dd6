// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/map.h"

#include "tests/core/counted.h"
#include "tests/core/owned.h"
#include "tests/support/raised.h"

namespace {

using namespace counted;
using Map = Owned<KorMap, kor_map_delete>;

TEST(Map, RefusesItsArgumentsInTheirOrder) {
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "Invalid initialCapacity: 1",
                  kor_map_new(1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    size_t given = 0;
    for (const char* missing : {"keyHashFn", "keyEqualsFn", "keyCpFn", "valueCpFn", "keyDelFn", "valueDelFn"}) {
        EXPECT_RAISES(
            KOR_RESULT_ILLEGAL_ARGUMENT, std::string(missing) + " is NULL",
            kor_map_new(2, given > 0 ? hash : nullptr, given > 1 ? equals : nullptr, given > 2 ? copy : nullptr,
                        given > 3 ? copy : nullptr, given > 4 ? destroy : nullptr, nullptr));
        ++given;
    }
}

TEST(Map, ReplacesTheValueAndKeepsTheKey) {
    const Map map(new_map(4));
    KorMapIterator first{};
    EXPECT_EQ(text_of(kor_map_put(map, "key", "old")), "old");
    const void* key = kor_map_begin(map, &first)->key;
    EXPECT_EQ(text_of(kor_map_put(map, "key", "new")), "new");
    EXPECT_EQ(counted::copies, 3) << "the key is not copied again";
    EXPECT_EQ(counted::deletions, 1);
    EXPECT_EQ(kor_map_begin(map, &first)->key, key);
    // The stored value itself may be put again: it is copied before it is freed.
    EXPECT_EQ(text_of(kor_map_put(map, "key", kor_map_get(map, "key"))), "new");
    EXPECT_EQ(entries(map), "key=new ");
    EXPECT_EQ(kor_map_size(map), 1U);
}

TEST(Map, KeepsNoneKeysAndValues) {
    const Map map(new_map(4));
    EXPECT_EQ(kor_map_put(map, "key", nullptr), nullptr);
    EXPECT_EQ(kor_map_put(map, nullptr, nullptr), nullptr);
    EXPECT_EQ(text_of(kor_map_put(map, nullptr, "value")), "value");
    EXPECT_EQ(kor_map_get(map, "absent"), nullptr);
    EXPECT_EQ(text_of(kor_map_get(map, nullptr)), "value");
    EXPECT_EQ(entries(map), "none=value key=none ");
    kor_map_clear(map);
    EXPECT_EQ(counted::copies, 2);
    EXPECT_EQ(counted::deletions, 2);
}

TEST(Map, DoublesAtThreeQuartersAndLosesNothing) {
    const uint32_t capacities[] = {2, 4, 8, 8, 8, 16, 16, 16, 16, 16, 16, 32};
    const Map map(new_map(2));
    const std::string xs(12, 'x');
    for (size_t i = 0; i < 12; ++i) {
        kor_map_put(map, &xs[i], &xs[i]);
        EXPECT_EQ(kor_map_capacity(map), capacities[i]) << i + 1 << " entries";
        for (size_t k = 0; k < 12; ++k) { EXPECT_EQ(kor_map_get(map, &xs[k]) != nullptr, k <= i) << k << " of " << i; }
    }
    kor_map_clear(map);
    EXPECT_EQ(kor_map_size(map), 0U);
    EXPECT_EQ(kor_map_capacity(map), 32U) << "the grown capacity stays";
    EXPECT_EQ(counted::deletions, 24);
    EXPECT_EQ(kor_map_get(map, "x"), nullptr);
}

// The hash is the length: 11 and 3 characters meet in the last of four slots, and again in the fourth of eight.
TEST(Map, AnIteratorLooksItsKeyUpAgainAndStaysOnTheLastEntry) {
    const Map map(new_map(4));
    KorMapIterator it{};
    EXPECT_EQ(kor_map_begin(map, &it), nullptr);
    EXPECT_EQ(it.map, nullptr) << "untouched when the map is empty";
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", kor_map_begin(map, nullptr));
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'it->map' is NULL", kor_map_next(&it));
    kor_map_put(map, "eleven-long", "1");
    EXPECT_EQ(kor_map_begin(map, &it), &it);
    kor_map_put(map, "i", "2");
    kor_map_put(map, "abc", "3");
    for (int i = 0; i < 2; ++i) { EXPECT_EQ(kor_map_next(&it), nullptr) << "growing moved the entry to the end"; }
    EXPECT_EQ(text_of(it.key), "eleven-long");
    EXPECT_EQ(entries(map), "i=2 abc=3 eleven-long=1 ");
    it.key = nullptr;
    EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'it->key' not present in 'it->map'", kor_map_next(&it));
}

}  // namespace
