// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_RAISED_H
#define QUORVEL_TESTS_SUPPORT_RAISED_H

#include <cstdint>
#include <gtest/gtest.h>
#include <initializer_list>
#include <iosfwd>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "quorvel/kor/result.h"

namespace support {

// Codes, as tables write them.
constexpr int16_t kArgument = KOR_RESULT_ILLEGAL_ARGUMENT;
constexpr int16_t kState = KOR_RESULT_ILLEGAL_STATE;
constexpr int16_t kIo = KOR_RESULT_IO_ERROR;
constexpr int16_t kProtocol = KOR_RESULT_PROTOCOL_ERROR;

struct Raised {
    int16_t code = KOR_RESULT_OK;
    std::string message;

    bool operator==(const Raised&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Raised& raised);

// The error that raising `code` with `detail` must leave: "[NAME] detail". The names are spelled here, not asked of
// the library.
Raised error(int16_t code, const std::string& detail);
std::vector<Raised> errors(int16_t code, std::initializer_list<const char*> details);
// Of a buffer that holds too little to be read, or has too little room to be written.
Raised too_few(size_t requested, size_t available);
Raised too_full(size_t requested, size_t available);

Raised raised_by(void (*call)(void*), void* context);

// Runs `call` inside a try block and returns what it raised, or code 0. The raise leaves by longjmp: keep objects with
// destructors outside the lambda.
template <typename Call>
Raised raised_by(Call&& call) {
    using Plain = std::remove_reference_t<Call>;
    return raised_by([](void* context) { (*static_cast<Plain*>(context))(); }, &call);
}

// While one lives, errors outside every try block are recorded here and the raise returns to the raiser.
class ReturningRaises {
public:
    ReturningRaises();
    ~ReturningRaises();
    ReturningRaises(ReturningRaises&&) = delete;

    [[nodiscard]] const std::vector<Raised>& all() const;
};

// Whether `call` raises this. An argument that is refused is refused once more where the raise returns, and just once.
template <typename Call>
testing::AssertionResult raises(const Raised& expected, Call&& call) {
    const Raised caught = raised_by(call);
    if (caught != expected) { return testing::AssertionFailure() << caught << " was raised, and not " << expected; }
    if (expected.code != KOR_RESULT_ILLEGAL_ARGUMENT) { return testing::AssertionSuccess(); }
    const ReturningRaises handler;
    call();
    if (handler.all() == std::vector{expected}) { return testing::AssertionSuccess(); }
    return testing::AssertionFailure() << handler.all().size() << " errors where the raise returns, first "
                                       << (handler.all().empty() ? Raised{} : handler.all()[0]);
}

}  // namespace support

// EXPECT_RAISES(KOR_RESULT_ILLEGAL_ARGUMENT, "'out' is NULL", kor_exception_get(nullptr));
#define EXPECT_RAISES(code, detail, ...) \
    EXPECT_TRUE(support::raises(support::error(code, detail), [&] { static_cast<void>(__VA_ARGS__); }))

#define EXPECT_NO_RAISE(...) EXPECT_EQ(support::raised_by([&] { static_cast<void>(__VA_ARGS__); }), support::Raised{})

#endif
