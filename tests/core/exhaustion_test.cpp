// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <type_traits>

#include "quorvel/kor/buffer.h"
#include "quorvel/kor/exception.h"
#include "quorvel/kor/heap.h"
#include "quorvel/kor/int_set.h"
#include "quorvel/kor/map.h"
#include "quorvel/kor/string.h"
#include "quorvel/kor/string_list.h"
#include "quorvel/kor/string_set.h"
#include "tests/core/counted.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/raised.h"

namespace {

// Something that an operation may change, and what it looks like. The operation keeps no object with a destructor: a
// raise may leave it.
struct Subject {
    Subject() = default;
    virtual ~Subject() = default;
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

    virtual void act() = 0;
    [[nodiscard]] virtual std::string look() const = 0;
};

// Makes an object or a copy, and frees it: nothing is there before or after.
template <auto kMake, auto kDelete>
struct Making : Subject {
    void act() override {
        auto* made = kMake();
        if constexpr (std::is_invocable_v<decltype(kDelete), decltype(made)>) {
            kDelete(made);
        } else {
            kDelete(&made);
        }
    }
    [[nodiscard]] std::string look() const override { return ""; }
};

struct MapPut : Subject {
    explicit MapPut(const char* putKey) : key(putKey) {
        kor_map_put(map, "a", "1");
        kor_map_put(map, "bb", "2");
    }
    ~MapPut() override { kor_map_delete(&map); }
    void act() override { kor_map_put(map, key, "new"); }
    [[nodiscard]] std::string look() const override {
        std::string all = std::to_string(kor_map_size(map)) + " of " + std::to_string(kor_map_capacity(map)) + ":";
        KorMapIterator position{};
        for (auto* it = kor_map_begin(map, &position); it != nullptr; it = kor_map_next(it)) {
            all.append(" ").append(static_cast<char*>(it->key)).append("=").append(static_cast<char*>(it->value));
        }
        return all;
    }

    const char* key;
    KorMap* map = kor_map_new(4, counted::hash, counted::equals, counted::copy, counted::copy, counted::destroy,
                              counted::destroy);
};

struct SetPut : Subject {
    SetPut() {
        kor_string_set_put(set, "a");
        kor_string_set_put(set, "b");
    }
    ~SetPut() override { kor_set_delete(&set); }
    void act() override { kor_string_set_put(set, "c"); }
    [[nodiscard]] std::string look() const override {
        std::string all = std::to_string(kor_set_size(set)) + " of " + std::to_string(kor_set_capacity(set)) + ":";
        KorStringSetIterator position{};
        for (auto* it = kor_string_set_begin(set, &position); it != nullptr; it = kor_string_set_next(it)) {
            all.append(" ").append(it->item);
        }
        return all;
    }

    KorSet* set = kor_string_set_new(4);
};

struct ListAppend : Subject {
    ListAppend() { kor_string_list_append(list, "a"); }
    ~ListAppend() override { kor_list_delete(&list); }
    void act() override { kor_string_list_append(list, "b"); }
    [[nodiscard]] std::string look() const override {
        std::string all = std::to_string(kor_list_size(list)) + ":";
        for (auto* node = kor_list_first(list); node != nullptr; node = kor_list_next(node)) {
            all.append(" ").append(kor_string_list_item(node));
        }
        return all;
    }

    KorList* list = kor_string_list_new();
};

struct Case {
    const char* name;
    size_t allocations;
    std::function<std::unique_ptr<Subject>()> make;
    std::string after;
};

template <auto kMake, auto kDelete>
Case making(const char* name, size_t allocations) {
    return {name, allocations, [] { return std::make_unique<Making<kMake, kDelete>>(); }, ""};
}

class Exhaustion : public testing::TestWithParam<Case> {
protected:
    // The frames' own memory is not the matter here: make them first.
    void SetUp() override {
        support::raised_by([] { support::raised_by([] {}); });
    }
};

TEST_P(Exhaustion, EachFailedAllocationChangesNothing) {
    for (size_t n = 1;; ++n) {
        const auto subject = GetParam().make();
        const std::string before = subject->look();
        const KorExceptionFrameNode* frame = kor_exception_get_frame_node();
        const support::FailingMalloc failing(n);
        const support::Raised raised = support::raised_by([&] { subject->act(); });
        EXPECT_EQ(kor_exception_get_frame_node(), frame);
        if (!failing.failed()) {
            EXPECT_EQ(raised, support::Raised{});
            EXPECT_EQ(subject->look(), GetParam().after);
            EXPECT_EQ(n, GetParam().allocations + 1);
            break;
        }
        EXPECT_EQ(raised, support::error(KOR_RESULT_MALLOC_ERROR, "")) << "allocation " << n;
        EXPECT_EQ(subject->look(), before) << "allocation " << n;
        EXPECT_EQ(failing.kept(), 0U) << "allocation " << n;
    }
}

TEST_P(Exhaustion, EachFailedAllocationChangesNothingWhereTheRaiseReturns) {
    const support::ReturningRaises raises;
    for (size_t n = 1; n <= GetParam().allocations; ++n) {
        const auto subject = GetParam().make();
        const std::string before = subject->look();
        const support::FailingMalloc failing(n);
        subject->act();
        EXPECT_TRUE(failing.failed());
        EXPECT_EQ(raises.all().size(), n);
        EXPECT_EQ(raises.all().back(), support::error(KOR_RESULT_MALLOC_ERROR, ""));
        EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
        EXPECT_EQ(subject->look(), before) << "allocation " << n;
        EXPECT_EQ(failing.kept(), 0U) << "allocation " << n;
        if (HasFailure()) { break; }
        subject->act();
        EXPECT_EQ(subject->look(), GetParam().after) << "tried again after allocation " << n;
    }
}

KorBuffer* new_buffer() { return kor_buffer_new(8); }
KorMap* new_map() {
    return kor_map_new(2, counted::hash, counted::equals, counted::copy, counted::copy, counted::destroy,
                       counted::destroy);
}
KorSet* new_int_set() { return kor_int_set_new(2); }
char* new_string() { return kor_string_new("text"); }
void* new_copy() { return kor_collection_copy("text", 4); }

INSTANTIATE_TEST_SUITE_P(
    Core, Exhaustion,
    testing::Values(making<new_buffer, kor_buffer_delete>("BufferNew", 2),
                    making<new_string, kor_heap_free>("StringNew", 1),
                    making<new_copy, kor_collection_destroy>("CollectionCopy", 1),
                    making<kor_string_list_new, kor_list_delete>("ListNew", 1),
                    making<new_map, kor_map_delete>("MapNew", 2), making<new_int_set, kor_set_delete>("SetNew", 2),
                    Case{"ListAppend", 2, [] { return std::make_unique<ListAppend>(); }, "2: a b"},
                    Case{"MapPutGrowing", 4, [] { return std::make_unique<MapPut>("ccc"); },
                         "3 of 8: a=1 bb=2 ccc=new"},
                    Case{"MapPutReplacing", 1, [] { return std::make_unique<MapPut>("bb"); }, "2 of 4: a=1 bb=new"},
                    // Slots 97, 98 and 99 modulo the capacity.
                    Case{"SetPutGrowing", 3, [] { return std::make_unique<SetPut>(); }, "3 of 8: a b c"}),
    [](const auto& test) { return test.param.name; });

}  // namespace
