// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_TABLE_FILE_H
#define QUORVEL_CLI_TABLE_FILE_H

#include <string>

#include "cli/link.h"
#include "cli/output.h"
#include "quorvel/quorvel.hpp"

namespace quorvel::cli {

// The records of a load, and what is announced of it. quorvel-tables(5) describes the file.
struct TableFile {
    std::string version;
    int acquirer = 0;
    Tables records;

    // Throws Error with the line that is wrong.
    [[nodiscard]] static TableFile read(const std::string& path);
};

// The version of the PIN pad's tables; empty when it has none.
[[nodiscard]] std::string table_version(Link& link, int acquirer);

void load_tables(Link& link, const TableFile& file, const Output& output);

}  // namespace quorvel::cli

#endif
