// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_TABLE_CHECK_H
#define QUORVEL_SIMULATOR_COMMANDS_TABLE_CHECK_H

#include "simulator/device/device.h"
#include "simulator/watch/journal.h"

namespace quorvel::sim::commands {

// Finds fields of the application's record that cannot be read.
void check_record(const Application& application, const TableRecord& record, Journal& journal);
// Finds a currency of the host's that is not the record's.
void check_currency(const Application& application, const TableRecord& record, const DataObjects& told,
                    Journal& journal);

}  // namespace quorvel::sim::commands

#endif
