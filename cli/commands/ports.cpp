// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/command.h"
#include "cli/port.h"

namespace quorvel::cli::setup {

Run ports(CommandLine&) {
    return [](Context& context) {
        Table table{{"Port", "State", "Device"}};
        for (const PortInfo& port : list_ports()) { table.rows.push_back({port.path, port.state, port.device}); }
        Group report{{"Ports", table}};
        if (!context.settings.port.empty()) { report.push_back({"Configured", context.settings.port}); }
        return Outcome{report};
    };
}

}  // namespace quorvel::cli::setup
