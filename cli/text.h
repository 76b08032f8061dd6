// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_TEXT_H
#define QUORVEL_CLI_TEXT_H

#include <string>

namespace quorvel::cli {

// A text of the user's in the PIN pad's characters, a byte each (ISO 8859-1). Throws Error for one that it does not
// have, as the two bytes of an accented letter would be shown as two wrong ones.
[[nodiscard]] std::string to_pin_pad(const std::string& text);

// The same, with breaks between lines: what the shell hands over as "\n", too.
[[nodiscard]] std::string lines_to_pin_pad(std::string text);

}  // namespace quorvel::cli

#endif
