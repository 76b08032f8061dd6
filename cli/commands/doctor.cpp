// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <filesystem>
#include <fmt/format.h>
#include <sys/stat.h>

#include "cli/command.h"
#include "cli/link.h"
#include "cli/port.h"

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

std::string words(const std::vector<Holder>& holders) {
    std::string text;
    for (const Holder& holder : holders) {
        text += fmt::format("{}{} (process {})", text.empty() ? "" : ", ", holder.program, holder.process);
    }
    return text;
}

// The virtual PIN pad has its own port open, as it must.
bool is_foreign(const Holder& holder) { return holder.program != "quorvel-sim"; }

std::string permission_remedy(const std::string& path) {
    const Access access = access_of(path);
    return fmt::format(
        "It belongs to {}, group {}, mode {}. Join the group and log in again: sudo usermod -aG {} $USER", access.owner,
        access.group, access.mode, access.group);
}

struct Failure {
    std::string found;
    std::string remedy;
};

// Why the port cannot be opened, from the general to the particular.
Failure opening_failure(const std::string& path, const LibraryError& error, const std::vector<Holder>& holders) {
    if (error.code() == KOR_RESULT_PERMISSION_DENIED) { return {error.what(), permission_remedy(path)}; }
    if (error.code() == KOR_RESULT_DEVICE_BUSY) {
        const std::string who = holders.empty() ? "a program of another user" : words(holders);
        return {fmt::format("{} is held by {}", path, who), "End that program, or name another port."};
    }
    if (error.code() == KOR_RESULT_IO_ERROR) {
        return {error.what(), "It is no serial port: see some with `quorvel ports`."};
    }
    return {error.what(), error.remedy()};
}

std::string silence_remedy(const std::vector<Holder>& holders) {
    const std::string sharing = holders.empty() ? "" : fmt::format("End {}, which reads the answers. ", words(holders));
    return sharing + "Check that the PIN pad is on, that the cable is in, that this is its port and that it speaks ABECS "
                     "at 19200 baud; then unplug and plug it.";
}

void tell_versions(Findings& findings, Link& link) {
    AbecsCmdGinOut who{};
    link.ask("GIN", [&] { return abecs_cmd_gin(link.get(), 0, &who); });
    findings.ok("versions", fmt::format("{} {}, protocol {}, software {}, library {}", who.idx00.mnName,
                                        who.idx00.model, who.idx00.specVer, who.idx00.manVers, kor_version_project()));
}

// Plain and encrypted sessions are checked whatever the settings say: not having the latter is no failure by itself.
Outcome check_sessions(Context& context, Findings& findings) {
    Settings settings = context.settings;
    settings.secure = false;
    {
        Link link(settings, context.output);
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

    std::error_code unseen;
    if (!std::filesystem::exists(port, unseen)) {
        return findings.failed(
            Exit::kPort, "port exists", fmt::format("there is no {}", port),
            "Plug the PIN pad in and see its port with `quorvel ports`; without one, start the virtual "
            "PIN pad: quorvel-sim");
    }
    const std::vector<Holder> holders = holders_of(port);
    try {
        probe_port(port);
    } catch (const LibraryError& error) {
        const Failure failure = opening_failure(port, error, holders);
        return findings.failed(Exit::kPort, "port opens", failure.found, failure.remedy);
    }
    findings.ok("port opens", "it exists and may be opened");

    std::vector<Holder> foreign;
    std::ranges::copy_if(holders, std::back_inserter(foreign), is_foreign);
    if (foreign.empty()) {
        findings.ok("port is free", holders.empty() ? "no other program has it open" : "the virtual PIN pad has it");
    } else {
        findings.remark("port is free", fmt::format("also open in {}", words(foreign)),
                        "Two programs on one port steal each other's answers: end the other one.");
    }
    try {
        return check_sessions(context, findings);
    } catch (const LibraryError& error) {
        return findings.failed(error.exit(), "answer", error.what(), silence_remedy(foreign));
    } catch (const StatusError& error) {
        return findings.failed(error.exit(), "session", error.what(), error.remedy());
    }
}

}  // namespace

Run doctor(CLI::App&) { return run_doctor; }

}  // namespace quorvel::cli::setup
