// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_EMV_H
#define QUORVEL_CLI_EMV_H

#include <cstdint>
#include <span>
#include <string>

#include "cli/value.h"

namespace quorvel::cli {

// EMV data objects by name, each as private as its tag is. A tag that is not known, and whatever is no data object, is
// a secret.
[[nodiscard]] Group emv_fields(std::span<const uint8_t> data);

}  // namespace quorvel::cli

#endif
