// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <stdexcept>
#include <string_view>

#include "fuzz/harness.h"
#include "simulator/scenario/scenario.h"

using namespace quorvel::sim;

// The first byte tells what the rest is a file of. What is wrong with it may leave as a std::runtime_error only.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) { return 0; }
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    try {
        switch (data[0] % 3) {
            case 0:
                static_cast<void>(Scenario::from_toml("scenario", text));
                break;
            case 1:
                static_cast<void>(Cards::from_toml(text));
                break;
            default:
                static_cast<void>(KeyStore::from_toml(text));
        }
    } catch (const std::runtime_error& error) {
        quorvel::fuzz::require(*error.what() != '\0', "it is told what is wrong");
    }
    return 0;
}
