// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/toml.h"

#include <gtest/gtest.h>

namespace {

// The line that is refused; 0 where the text is read.
TEST(Toml, ATextIsReadOrRefusedAndNeverEndsTheProgram) {
    const std::pair<std::string_view, size_t> cases[]{
        {"\xEF\xBB\xBF# é\na = 'é' # é\nb = \"\\\"é\\\\\"\n'é' = '''é''''\n", 0},
        {"a = \"\"\"é \"\" \\\"\"\" \\\\é \\\n   e é\"\"\"\"\"\n\"é\".b = '\\'", 0},
        {"a = 'é'\nb = é", 2},
        {"a = '''é''' é", 1},
        {"a = \"\"\"\n\\\n   é\"\"\"", 3},
        {"a = 'é\nb = é", 1},
        {"a = [}", 1},
        {"\n[=]", 2},
        {"a = 1979-05-27 0,", 1},
    };
    for (const auto& [text, due] : cases) {
        size_t line = 0;
        try {
            static_cast<void>(quorvel::wire::parse_toml(text));
        } catch (const quorvel::wire::TomlError& error) { line = error.line(); }
        EXPECT_EQ(line, due) << text;
    }
}

TEST(Toml, AFileMayBeEmptyButNoFolder) {
    EXPECT_EQ(quorvel::wire::text_of_file("/dev/null"), "");
    for (const char* path : {"/", "/nowhere"}) {
        EXPECT_THROW(static_cast<void>(quorvel::wire::text_of_file(path)), std::runtime_error);
    }
}

}  // namespace
