// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <string>

#include "quorvel/quorvel.h"
#include "tests/support/raised.h"

// With no try block open and an uncaught handler that returns, every function leaves at once and harmlessly after it
// has raised. Checked over the whole interface: each function is called with zeros and null pointers, through the
// shared library, as an application would.
namespace {

struct Row {
    const char* name;
    void (*call)();
};

template <typename Result, typename... Parameters>
void call_with_zeros(Result (*function)(Parameters...)) {
    static_cast<void>(function(Parameters{}...));
}

template <typename Result, typename First, typename Second, typename Third>
void call_with_zeros(Result (*function)(First, Second, Third, ...)) {
    static_cast<void>(function(First{}, Second{}, Third{}));
}

const Row kRaising[] = {
#define RAISES(function) {#function, [] { call_with_zeros(&(function)); }},
#include "tests/interface/raising_functions.inc"
#undef RAISES
};

// What has nothing to raise for zeros: constructors, deleters, pure functions, and the few that trust their arguments
// by contract. These are called with real arguments elsewhere.
const std::set<std::string> kQuiet{
    "abecs_cmd_gcr_card_type_to_string",
    "abecs_cmd_gcr_stat_chip_to_string",
    "abecs_data_is_alphanumeric",
    "abecs_data_is_alphanumeric_field",
    "abecs_data_is_numeric_field",
    "abecs_data_write_field_h_cdata",
    "abecs_data_write_field_h_raw",
    "abecs_pp_event_to_string",
    "abecs_rsp_stat_to_string",
    "abecs_spe_mthd_dat_to_string",
    "abecs_comm_close",
    "crypt_init",
    "kor_enum_is_valid",
    "kor_enum_is_valid_range",
    "kor_heap_alloc",
    "kor_heap_free",
    "kor_path_extension",
    "kor_path_lextension",
    "kor_path_name",
    "kor_result_to_string",
    "kor_serial_close",
    "kor_file_close",
};

bool is_quiet(const std::string& name) {
    static const char* const families[] = {"__",          "kor_exception_",  "kor_endianness_", "kor_version_",
                                           "kor_system_", "kor_collection_", "kor_test_"};
    static const char* const texts[] = {"kor_string_c", "kor_string_f", "kor_string_i",   "kor_string_e",
                                        "kor_string_s", "kor_string_r", "kor_string_new", "kor_string_len"};
    static const char* const buffers[] = {"kor_buffer_get_", "kor_buffer_set_", "kor_buffer_is_", "kor_buffer_save_",
                                          "kor_buffer_write_str"};
    const auto starts = [&](const char* prefix) { return name.starts_with(prefix); };
    return kQuiet.contains(name) || name.ends_with("_new") || name.ends_with("_delete") || name.ends_with("_to_string")
           || std::ranges::any_of(families, starts) || std::ranges::any_of(texts, starts)
           || std::ranges::any_of(buffers, starts);
}

TEST(ReturningRaises, EveryFunctionLeavesHarmlessly) {
    for (const Row& row : kRaising) {
        const support::ReturningRaises handler;
        row.call();
        EXPECT_FALSE(handler.all().empty()) << row.name;
        for (const support::Raised& raised : handler.all()) {
            EXPECT_NE(raised.code, KOR_RESULT_OK) << row.name;
            EXPECT_TRUE(raised.message.starts_with("[KOR_RESULT_")) << row.name << ": " << raised.message;
        }
        EXPECT_EQ(kor_exception_get_error(), KOR_RESULT_OK) << row.name;
        EXPECT_EQ(kor_exception_get_frame_node(), nullptr) << row.name;
    }
}

TEST(ReturningRaises, NoExportedFunctionIsForgotten) {
    std::set<std::string> listed;
    for (const Row& row : kRaising) { listed.insert(row.name); }
    std::ifstream exports(QUORVEL_EXPORTS);
    ASSERT_TRUE(exports);
    for (std::string name; std::getline(exports, name);) {
        EXPECT_TRUE(listed.contains(name) || is_quiet(name)) << name << " belongs into raising_functions.inc";
    }
}

}  // namespace
