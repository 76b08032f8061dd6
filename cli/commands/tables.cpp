// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fmt/format.h>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

#include "cli/command.h"
#include "cli/secret.h"
#include "cli/table_file.h"

namespace quorvel::cli::setup {

namespace {

struct LoadOptions {
    std::string file;
    bool ifNewer = false;
    bool yes = false;
};

// A file without records makes the PIN pad forget those that it has, and take no card any more.
void confirm_wiping(const TableFile& file, bool yes) {
    if (file.records.records() > 0 || yes) { return; }
    const Error refused(Exit::kUsage, "The file has no records: loading it wipes the tables of the PIN pad.",
                        "If that is meant, say so with --yes.");
    if (isatty(STDIN_FILENO) != 1) { throw refused; }
    if (ask("The file has no records. Wipe the tables of the PIN pad? [y/N] ") != "y") { throw refused; }
}

Outcome run_load(Context& context, const LoadOptions& options) {
    const std::string& path = options.file.empty() ? context.settings.tables : options.file;
    if (path.empty()) {
        throw Error(Exit::kUsage, "No file is named.", "Name it, or give `tables` in the configuration.");
    }
    const TableFile file = TableFile::read(path);
    confirm_wiping(file, options.yes);
    Link link(context.settings, context.output);
    Group report{{"Acquirer", file.acquirer}, {"Version", file.version}, {"Records", file.records.records()}};
    const std::string before = table_version(link, file.acquirer);
    const bool due = !options.ifNewer || before != file.version;
    if (due) { load_tables(link, file, context.output); }
    link.close();
    report.push_back({"Version before", before.empty() ? "none" : before});
    report.push_back({"Loaded", due});
    return {report};
}

Outcome run_version(Context& context, const std::vector<int>& acquirers) {
    Link link(context.settings, context.output);
    Table table{{"Acquirer", "Version"}};
    for (const int acquirer : acquirers) {
        const std::string version = table_version(link, acquirer);
        table.rows.push_back({acquirer, version.empty() ? "none" : version});
    }
    link.close();
    return {{{"Tables", table}}};
}

}  // namespace

Run tables_load(CommandLine& line) {
    const auto options = std::make_shared<LoadOptions>();
    line.text("file", options->file, "FILE", "The records; else the configured file");
    line.flag("--if-different", options->ifNewer, "Only if the PIN pad has another version");
    line.flag("--yes", options->yes, "Load a file without records, which wipes the tables, without asking");
    return [options](Context& context) { return run_load(context, *options); };
}

Run tables_version(CommandLine& line) {
    const auto acquirers = std::make_shared<std::vector<int>>(1);
    line.numbers("acquirer", *acquirers, "INDEX", "0 to 99, 0 standing for all of them together", 0, 99);
    return [acquirers](Context& context) { return run_version(context, *acquirers); };
}

}  // namespace quorvel::cli::setup
