// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <filesystem>
#include <fmt/format.h>
#include <sys/stat.h>

#include "cli/command.h"
#include "cli/link.h"
#include "cli/port.h"
#include "cli/udev.h"

namespace quorvel::cli::setup {

namespace {

// The checks made so far, each with what it found and what to do about it.
class Findings {
public:
    void ok(std::string check, std::string found) { add(std::move(check), "ok", std::move(found), ""); }
    void remark(std::string check, std::string found, std::string remedy) {
        add(std::move(check), "note", std::move(found), std::move(remedy));
    }
    // Nothing that comes after it can be checked.
    Outcome failed(Exit exit, std::string check, std::string found, std::string remedy) {
        add(std::move(check), "FAILED", std::move(found), std::move(remedy));
        return outcome(exit);
    }

    [[nodiscard]] Outcome outcome(Exit exit) const {
        Group report{{"Checks", checks_}};
        if (!remedies_.rows.empty()) { report.push_back({"What to do", remedies_, "remedies"}); }
        report.push_back({"Verdict", exit == Exit::kOk ? "The PIN pad is ready." : "The PIN pad cannot be used yet."});
        return {report, exit};
    }

private:
    void add(std::string check, const char* state, std::string found, std::string remedy) {
        if (!remedy.empty()) { remedies_.rows.push_back({check, std::move(remedy)}); }
        checks_.rows.push_back({std::move(check), state, std::move(found)});
    }

    Table checks_{{"Check", "State", "Found"}};
    Table remedies_{{"Check", "Remedy"}};
};

// What the reason why a port cannot be used has kept from holding.
const char* check_of(PortError::Reason reason) {
    return reason == PortError::Reason::kMissing ? "port exists"
           : reason == PortError::Reason::kHeld  ? "port is free"
                                                 : "port opens";
}

// What only the settings of the line, or another device, can explain.
Outcome no_answer(Findings& findings, const std::string& port, const LibraryError& error) {
    findings.ok("port opens", "it exists, nobody else has it open, and it may be opened");
    if (babbles(port)) {
        return findings.failed(error.exit(), "answer", "the line is never silent: is this a PIN pad, at 19200?",
                               "Unplug what sends there, and see with `quorvel ports` which port is the PIN pad's.");
    }
    return findings.failed(error.exit(), "answer", error.what(),
                           "Check that the PIN pad is on, that the cable is in, that this is its port and that it "
                           "speaks ABECS at 19200 baud; then unplug and plug it.");
}

// Nobody looks for modems at a pseudo-terminal.
void tell_of_prober(Findings& findings, const std::string& port) {
    std::error_code error;
    const std::filesystem::path device = std::filesystem::canonical(port, error);
    struct stat info = {};
    if (stat(port.c_str(), &info) != 0 || device.parent_path() == "/dev/pts") { return; }
    const Prober prober = prober_at(System(), info.st_rdev, device.filename().string());
    if (prober.remedy.empty()) {
        findings.ok("modem prober", prober.found);
    } else {
        findings.remark("modem prober", prober.found, prober.remedy);
    }
}

void tell_versions(Findings& findings, Link& link) {
    const GinAnswer who = link.ask(Gin{});
    findings.ok("versions", fmt::format("{} {}, protocol {}, software {}, library {}", who.manufacturer, who.model,
                                        who.protocol_version, who.vendor_version, quorvel::version()));
}

// Plain and encrypted sessions are checked whatever the settings say: not having the latter is no failure by itself.
Outcome check_sessions(Context& context, Findings& findings) {
    Settings settings = context.settings;
    settings.secure = false;
    {
        Link link(settings, context.output);
        findings.ok("port opens", "it exists and may be opened");
        findings.ok("answer", "the PIN pad answers");
        findings.ok("session", "a session can be opened");
        tell_versions(findings, link);
        link.close();
    }
    settings.secure = true;
    try {
        Link(settings, context.output).close();
        findings.ok("encrypted session", "can be opened");
    } catch (const Error& error) {
        findings.remark("encrypted session", error.what(), "The PIN pad may be too old for it: leave out --secure.");
    }
    return findings.outcome(Exit::kOk);
}

Outcome run_doctor(Context& context) {
    Findings findings;
    const std::string& port = context.settings.port;
    if (port.empty()) {
        return findings.failed(
            Exit::kUsage, "port named", "no port is named",
            fmt::format("See them with `quorvel ports`; name one with --port, QUORVEL_PORT or in {}.",
                        default_config().string()));
    }
    findings.ok("port named", fmt::format("{}, by {}", port, origin_name(context.settings.portFrom)));

    try {
        if (!context.settings.force) {
            require_free(port);
            findings.ok("port is free", "no other program has it open");
        }
        tell_of_prober(findings, port);
        return check_sessions(context, findings);
    } catch (const PortError& error) {
        return findings.failed(error.exit(), check_of(error.reason()), error.what(), error.remedy());
    } catch (const LibraryError& error) { return no_answer(findings, port, error); } catch (const StatusError& error) {
        return findings.failed(error.exit(), "session", error.what(), error.remedy());
    }
}

}  // namespace

Run doctor(CommandLine&) { return run_doctor; }

}  // namespace quorvel::cli::setup
