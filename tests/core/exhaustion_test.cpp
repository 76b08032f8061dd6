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
#include "quorvel/kor/string_set.h"
#include "tests/core/counted.h"

namespace {

KorMap* new_map(uint32_t capacity) {
    return kor_map_new(capacity, counted::hash, counted::equals, counted::copy, counted::copy, counted::destroy,
                       counted::destroy);
}

// What an operation may change, and what it looks like.
struct MapPut {
    explicit MapPut(const char* putKey) : key(putKey) {
        kor_map_put(map, "a", "1");
        kor_map_put(map, "bb", "2");
    }
    ~MapPut() { kor_map_delete(&map); }
    void* act() const { return kor_map_put(map, key, "new"); }
    [[nodiscard]] std::string look() const {
        std::string all = std::to_string(kor_map_size(map)) + " of " + std::to_string(kor_map_capacity(map)) + ":";
        KorMapIterator position{};
        for (auto* it = kor_map_begin(map, &position); it != nullptr; it = kor_map_next(it)) {
            all.append(" ").append(static_cast<char*>(it->key)).append("=").append(static_cast<char*>(it->value));
        }
        return all;
    }

    const char* key;
    KorMap* map = new_map(4);
};

struct SetPut {
    SetPut() {
        kor_string_set_put(set, "a");
        kor_string_set_put(set, "b");
    }
    ~SetPut() { kor_set_delete(&set); }
    void* act() const { return kor_string_set_put(set, "c"); }
    [[nodiscard]] std::string look() const {
        std::string all = std::to_string(kor_set_size(set)) + " of " + std::to_string(kor_set_capacity(set)) + ":";
        KorStringSetIterator position{};
        for (auto* it = kor_string_set_begin(set, &position); it != nullptr; it = kor_string_set_next(it)) {
            all.append(" ").append(it->item);
        }
        return all;
    }

    KorSet* set = kor_string_set_new(4);
};

struct ListAppend {
    ListAppend() { kor_string_list_append(list, "a"); }
    ~ListAppend() { kor_list_delete(&list); }
    void* act() const { return kor_string_list_append(list, "b"); }
    [[nodiscard]] std::string look() const {
        std::string all = std::to_string(kor_list_size(list)) + ":";
        for (auto* node = kor_list_first(list); node != nullptr; node = kor_list_next(node)) {
            all.append(" ").append(kor_string_list_item(node));
        }
        return all;
    }

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
    expect_all_or_nothing<ListAppend>(2, "2: a b");
    expect_all_or_nothing<MapPut>(4, "3 of 8: a=1 bb=2 ccc=new", "ccc");
    expect_all_or_nothing<MapPut>(1, "2 of 4: a=1 bb=new", "bb");
    expect_all_or_nothing<SetPut>(3, "3 of 8: a b c");  // slots 97, 98 and 99 modulo the capacity
}

TEST(Exhaustion, MakingAnObjectLeavesNothingBehind) {
    using support::allocations_of;
    using support::make;
    EXPECT_EQ(allocations_of(make<[] { return kor_buffer_new(8); }, kor_buffer_delete>), 2U);
    EXPECT_EQ(allocations_of(make<kor_string_list_new, kor_list_delete>), 1U);
    EXPECT_EQ(allocations_of(make<[] { return new_map(2); }, kor_map_delete>), 2U);
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
