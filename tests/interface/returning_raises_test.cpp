// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/additions.h"
#include "quorvel/quorvel.h"
#include "tests/interface/exported_names.h"
#include "tests/support/raised.h"

// With no try block open and an uncaught handler that returns, every function leaves at once and harmlessly after it
// has raised. Checked over the whole interface: each function is called with zeros and null pointers, through the
// shared library, as an application would. What a function says of a first argument that is none is proved here for
// all tests.
namespace {

template <typename Result>
std::string shown(Result result) {
    if constexpr (std::is_convertible_v<Result, const char*>) {
        return result != nullptr ? '"' + std::string(result) + '"' : "0";
    } else if constexpr (std::is_pointer_v<Result>) {
        return result != nullptr ? "a pointer" : "0";
    } else {
        return std::to_string(result);
    }
}

template <typename Result, typename... Parameters>
std::string call_with_zeros(Result (*function)(Parameters...)) {
    if constexpr (std::is_void_v<Result>) {
        return function(Parameters{}...), "0";
    } else {
        return shown(function(Parameters{}...));
    }
}

template <typename Result, typename First, typename Second, typename Third>
std::string call_with_zeros(Result (*function)(First, Second, Third, ...)) {
    return shown(function(First{}, Second{}, Third{}));
}

template <typename Object>
std::string delete_none(void (*function)(Object**)) {
    Object* none = nullptr;
    function(nullptr);
    function(&none);
    return "0";
}

const struct {
    const char* name;
    std::string (*call)();
    std::vector<support::Raised> raised;
    const char* result;
} kFunctions[] = {
#define RAISES(function, code, result, detail) \
    {#function, [] { return call_with_zeros(&(function)); }, {support::error(KOR_RESULT_##code, detail)}, #result},
#define DELETES(function) {#function, [] { return delete_none(&(function)); }, {}, "0"},
#define QUIET(function) {#function, [] { return shown(0); }, {}, "0"},
#include "tests/interface/raising_functions.inc"
};

TEST(ReturningRaises, EveryFunctionRaisesOnceAndLeavesHarmlessly) {
    for (const auto& row : kFunctions) {
        const support::ReturningRaises handler;
        EXPECT_EQ(row.call(), row.result) << row.name;
        EXPECT_EQ(handler.all(), row.raised) << row.name;
        EXPECT_EQ(kor_exception_get_error(), KOR_RESULT_OK) << row.name;
        EXPECT_EQ(kor_exception_get_frame_node(), nullptr) << row.name;
    }
}

// Those that the conventions name, and a descriptor: all others give nothing, or a status, which is then ST_INTERR.
TEST(ReturningRaises, OnlyFiveFunctionsHaveAnotherResult) {
    const std::set<std::string> five{"abecs_cmd_cex_response_get_event", "abecs_cmd_gcr", "abecs_cmd_gcr_empty",
                                     "abecs_cmd_gen_04_03", "abecs_comm_get_fd"};
    const std::set<std::string> nothing{"0", "\"\"", std::to_string(ABECS_RSP_STAT_ST_INTERR)};
    for (const auto& row : kFunctions) { EXPECT_NE(nothing.contains(row.result), five.contains(row.name)) << row.name; }
}

TEST(ReturningRaises, NoExportedFunctionIsForgotten) {
    std::set<std::string> listed;
    for (const auto& row : kFunctions) { listed.insert(row.name); }
    EXPECT_EQ(listed, exported_names());
}

}  // namespace
