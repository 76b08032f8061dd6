// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cstdio>
#include <quorvel/quorvel.hpp>

// The version, then the text of an error that the library raised and the wrapper threw.
int main() {
    std::printf("%s\n", kor_version_project());
    try {
        quorvel::detail::call([] { kor_exception_get(nullptr); });
    } catch (const quorvel::Error& error) { std::printf("%s\n", error.what()); }
}
