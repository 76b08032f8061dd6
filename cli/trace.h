// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_TRACE_H
#define QUORVEL_CLI_TRACE_H

#include <string>

#include "cli/output.h"
#include "quorvel/quorvel.hpp"

namespace quorvel::cli::trace {

// What the link has done, in words, and what encrypted sessions hold.
void tell(Output& output, const Event& event);

// What the link cannot tell by itself.
void remark(Output& output, const std::string& text);

}  // namespace quorvel::cli::trace

#endif
