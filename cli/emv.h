// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_EMV_H
#define QUORVEL_CLI_EMV_H

#include <vector>

#include "cli/value.h"
#include "wire/item.h"

namespace quorvel::cli {

// EMV data objects by name, with words for the bits of some.
[[nodiscard]] Group emv_fields(const std::vector<wire::Item>& objects);

}  // namespace quorvel::cli

#endif
