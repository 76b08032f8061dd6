// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_AMOUNT_H
#define QUORVEL_CLI_AMOUNT_H

#include <cstdint>
#include <string>

namespace quorvel::cli {

// "12.34" or "12" in hundredths, up to twelve digits of them. Throws Error.
[[nodiscard]] uint64_t parse_amount(const std::string& text);
[[nodiscard]] std::string amount_words(uint64_t hundredths);

}  // namespace quorvel::cli

#endif
