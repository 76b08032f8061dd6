// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/support/malloc/exhaustion.h"

#include <csignal>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "core/attempt.h"
#include "quorvel/kor/buffer.h"
#include "quorvel/kor/heap.h"
#include "quorvel/kor/int_set.h"
#include "quorvel/kor/map.h"
#include "quorvel/kor/string.h"
#include "quorvel/kor/string_list.h"
#include "tests/core/counted.h"

namespace {

// What an operation may change, and what it looks like.
struct MapPut {
    explicit MapPut(const char* putKey) : key(putKey) {
        kor_map_put(map, "a", "1");
        kor_map_put(map, "bb", "2");
    }
    ~MapPut() { kor_map_delete(&map); }
    void* act() const { return kor_map_put(map, key, "new"); }
    [[nodiscard]] std::string look() const {
        return counted::entries(map) + "of " + std::to_string(kor_map_capacity(map));
    }

    const char* key;
    KorMap* map = counted::new_map(4);
};

struct ListAppend {
    ListAppend() { kor_string_list_append(list, "a"); }
    ~ListAppend() { kor_list_delete(&list); }
    void* act() const { return kor_string_list_append(list, "b"); }
    [[nodiscard]] std::string look() const { return counted::items(list) + std::to_string(kor_list_size(list)); }

    KorList* list = kor_string_list_new();
};

// Every allocation fails once: nothing must have changed, and the same operation must succeed afterwards.
template <typename Subject, typename... Arguments>
void expect_all_or_nothing(size_t allocations, const std::string& after, Arguments... arguments) {
    for (const support::Raise raise : support::kBothRaises) {
        for (size_t n = 1; n <= allocations + 1; ++n) {
            const Subject subject(arguments...);
            const std::string before = subject.look();
            const void* result = nullptr;
            EXPECT_EQ(support::fails(n, raise, [&] { result = subject.act(); }), n <= allocations);
            if (n > allocations) { break; }
            EXPECT_EQ(result, nullptr);
            EXPECT_EQ(subject.look(), before) << "allocation " << n;
            subject.act();
            EXPECT_EQ(subject.look(), after) << "tried again after allocation " << n;
        }
    }
}

TEST(Exhaustion, AFailedChangeChangesNothing) {
    expect_all_or_nothing<ListAppend>(2, "a b 2");
    expect_all_or_nothing<MapPut>(4, "a=1 bb=2 ccc=new of 8", "ccc");
    expect_all_or_nothing<MapPut>(1, "a=1 bb=new of 4", "bb");
}

TEST(Exhaustion, MakingAnObjectLeavesNothingBehind) {
    using support::allocations_of;
    using support::make;
    EXPECT_EQ(allocations_of(make<[] { return kor_buffer_new(8); }, kor_buffer_delete>), 2U);
    EXPECT_EQ(allocations_of(make<kor_string_list_new, kor_list_delete>), 1U);
    EXPECT_EQ(allocations_of(make<[] { return counted::new_map(2); }, kor_map_delete>), 2U);
    EXPECT_EQ(allocations_of(make<[] { return kor_int_set_new(2); }, kor_set_delete>), 2U);
    EXPECT_EQ(allocations_of([] { kor_heap_free(kor_string_new("text")); }), 1U);
    EXPECT_EQ(allocations_of([] { kor_collection_destroy(kor_collection_copy("text", 4)); }), 1U);
}

// No error can be raised through a try block that cannot be opened.
TEST(Exhaustion, ATryBlockWithoutMemoryAborts) {
    support::raised_by([] {});  // makes the first frame
    const auto ran_without_memory = [] {
        const support::FailingMalloc failing(1);
        while (kor_exception_next_frame_node()->next != nullptr) {}
        bool ran = false;
        kor::attempt([&] { ran = true; }).run();
        while (kor_exception_previous_frame_node() != nullptr) {}
        return ran;
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto on_standard_error = [&] {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        ran_without_memory();
    };
    EXPECT_EXIT(on_standard_error(), testing::KilledBySignal(SIGABRT), "FATAL: MEMORY ALLOCATION ERROR\n");
    const auto before = std::signal(SIGABRT, SIG_IGN);
    EXPECT_FALSE(ran_without_memory()) << "not where the signal is survived either";
    std::signal(SIGABRT, before);
}

}  // namespace
