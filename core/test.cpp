// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/kor/test.h"

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <optional>

#include "core/attempt.h"
#include "core/check.h"
#include "core/construct.h"
#include "core/raise.h"
#include "core/set.h"
#include "quorvel/kor/heap.h"
#include "quorvel/kor/string.h"
#include "quorvel/kor/string_set.h"

using namespace kor;

struct KorTestSuite {
    KorSet* cases;
    KorSet* titles;
};

namespace {

constexpr uint32_t kInitialCapacity = 16;

struct Case {
    KorTestFn fn;
    char* title;
};

const Case& as_case(const void* item) { return *static_cast<const Case*>(item); }

void* copy_case(const void* item) {
    char* title = kor_string_new(as_case(item).title);
    // Nullable, so that the title is not lost with the case.
    void* memory = title != nullptr ? kor_heap_alloc(sizeof(Case), 1) : nullptr;
    if (memory == nullptr) {
        kor_heap_free(title);
        return raise(KOR_RESULT_MALLOC_ERROR, nullptr), nullptr;
    }
    auto* copy = static_cast<Case*>(memory);
    *copy = {as_case(item).fn, title};
    return copy;
}

void delete_case(void* item) {
    kor_heap_free(as_case(item).title);
    kor_heap_free(item);
}

bool case_equals(const void* lhs, const void* rhs) { return as_case(lhs).fn == as_case(rhs).fn; }

uint32_t hash_case(const void* item) {
    const uint64_t address = reinterpret_cast<uintptr_t>(as_case(item).fn);
    return static_cast<uint32_t>(address ^ (address >> 32));
}

}  // namespace

KorTestSuite* kor_test_suite_new() {
    return construct(kor_test_suite_delete, [](KorTestSuite* suite) {
        suite->cases = kor_set_new(kInitialCapacity, hash_case, case_equals, copy_case, delete_case);
        suite->titles = kor_string_set_new(kInitialCapacity);
    });
}

void kor_test_suite_delete(KorTestSuite** suite) {
    if (suite == nullptr || *suite == nullptr) { return; }
    kor_set_delete(&(*suite)->cases);
    kor_set_delete(&(*suite)->titles);
    kor_heap_free(*suite);
    *suite = nullptr;
}

void kor_test_suite_add_case(KorTestSuite* suite, const char* title, KorTestFn fn) {
    if (refuse_null(suite, "'suite' is NULL") || refuse_null(title, "'title' is NULL")
        || refuse_null(fn, "'fn' is NULL")) {
        return;
    }
    // Only looked at: the set makes its own copy of the title.
    const Case wanted{fn, const_cast<char*>(title)};
    if (kor_set_contains(suite->cases, &wanted)) {
        return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "Test case function already registered");
    }
    if (refuse_if(kor_string_set_contains(suite->titles, title), "Test case title already registered")) { return; }
    // The case's copy may raise: the title's is then given back, so that the same call can be made again.
    const auto newTitle = prepare_put(*suite->titles, title);
    if (!newTitle) { return; }
    std::optional<SetAddition> newCase;
    attempt([&] { newCase = prepare_put(*suite->cases, &wanted); })
        .cleanup([&] {
            if (!newCase) { abandon_put(*suite->titles, *newTitle); }
        })
        .run();
    if (!newCase) { return; }
    put(*suite->titles, *newTitle);
    put(*suite->cases, *newCase);
}

void kor_test_suite_run(KorTestSuite* suite) {
    if (refuse_null(suite, "'suite' is NULL")) { return; }
    KorSetIterator place;
    for (KorSetIterator* it = kor_set_begin(suite->cases, &place); it != nullptr; it = kor_set_next(it)) {
        std::printf("---- %s ----\n", as_case(it->item).title);
        as_case(it->item).fn();
    }
}

bool kor_test_mem_equals(const void* lhs, const void* rhs, size_t size) {
    return size == 0 || std::memcmp(lhs, rhs, size) == 0;
}

void kor_test_signal(int signal, KorTestSignalHandler handler) { std::signal(signal, handler); }

void kor_test_raise_abort() { std::raise(SIGABRT); }
