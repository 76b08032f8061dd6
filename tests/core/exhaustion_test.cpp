// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/support/malloc/exhaustion.h"

#include <array>
#include <csignal>
#include <unistd.h>

#include "core/attempt.h"
#include "quorvel/kor/map.h"
#include "quorvel/kor/string_list.h"
#include "tests/core/counted.h"
#include "tests/core/owned.h"

namespace {

// Every allocation fails once: nothing must have changed, and the same operation must succeed afterwards.
template <typename Object, void (*kDelete)(Object**)>
void expect_all_or_nothing(size_t allocations, const std::string& after, Object* (*make)(), void* (*act)(Object*),
                           std::string (*look)(Object*)) {
    for (const support::Raise raise : support::kBothRaises) {
        for (size_t n = 1; n <= allocations + 1; ++n) {
            const Owned<Object, kDelete> subject(make());
            const std::string before = look(subject);
            const void* result = nullptr;
            EXPECT_EQ(support::fails(n, raise, [&] { result = act(subject); }), n <= allocations);
            if (n > allocations) { break; }
            EXPECT_EQ(result, nullptr);
            EXPECT_EQ(look(subject), before) << "allocation " << n;
            act(subject);
            EXPECT_EQ(look(subject), after) << "tried again after allocation " << n;
        }
    }
}

KorList* list_of_a() {
    KorList* list = kor_string_list_new();
    kor_string_list_append(list, "a");
    return list;
}
void* append(KorList* list) { return kor_string_list_append(list, "b"); }
std::string look_at_list(KorList* list) { return counted::items(list) + std::to_string(kor_list_size(list)); }

KorMap* map_of_two() {
    KorMap* map = counted::new_map(4);
    kor_map_put(map, "a", "1");
    kor_map_put(map, "bb", "2");
    return map;
}
void* put_third(KorMap* map) { return kor_map_put(map, "ccc", "new"); }
void* replace(KorMap* map) { return kor_map_put(map, "bb", "new"); }
std::string look_at_map(KorMap* map) { return counted::entries(map) + "of " + std::to_string(kor_map_capacity(map)); }

TEST(Exhaustion, AFailedChangeChangesNothing) {
    expect_all_or_nothing<KorList, kor_list_delete>(2, "a b 2", list_of_a, append, look_at_list);
    expect_all_or_nothing<KorMap, kor_map_delete>(4, "a=1 bb=2 ccc=new of 8", map_of_two, put_third, look_at_map);
    expect_all_or_nothing<KorMap, kor_map_delete>(1, "a=1 bb=new of 4", map_of_two, replace, look_at_map);
    EXPECT_EQ(support::allocations_of([] { kor_map_delete(std::array{counted::new_map(4)}.data()); }), 2U);
}

// No error can be raised through a try block that cannot be opened.
TEST(Exhaustion, ATryBlockWithoutMemoryAborts) {
    support::raised_by([] {});  // makes the first frame
    const auto ranWithoutMemory = [] {
        const support::FailingMalloc failing(1);
        while (kor_exception_next_frame_node()->next != nullptr) {}
        bool ran = false;
        kor::attempt([&] { ran = true; }).run();
        while (kor_exception_previous_frame_node() != nullptr) {}
        return ran;
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto onStandardError = [&] {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        ranWithoutMemory();
    };
    EXPECT_EXIT(onStandardError(), testing::KilledBySignal(SIGABRT), "FATAL: MEMORY ALLOCATION ERROR\n");
    const auto before = std::signal(SIGABRT, SIG_IGN);
    EXPECT_FALSE(ranWithoutMemory()) << "not where the signal is survived either";
    std::signal(SIGABRT, before);
}

}  // namespace
