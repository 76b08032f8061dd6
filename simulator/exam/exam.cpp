// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/exam/exam.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <thread>
#include <unistd.h>

#include "simulator/exam/examiner.h"
#include "simulator/exam/process.h"
#include "simulator/exam/report.h"

namespace quorvel::sim::exam {

namespace {

// Cases mostly wait.
constexpr unsigned kJobsPerCore = 8;

unsigned jobs_for(const Request& request) {
    if (request.jobs != 0) { return request.jobs; }
    return kJobsPerCore * std::max(1U, std::thread::hardware_concurrency());
}

Till till_for(const Request& request) {
    Till till = request.till.empty() ? Till() : Till::from_file(request.till);
    if (!request.command.empty()) { till.command = request.command; }
    if (till.command.empty()) { throw std::runtime_error("no till: name its command behind --, or in its file"); }
    till.check_command();
    return till;
}

// For whoever looks on.
class Progress {
public:
    explicit Progress(size_t all) : all_(all) {}

    void tell(const Result& result) {
        if (!result.is_good()) { ++failed_; }
        ++done_;
        if (::isatty(STDERR_FILENO) == 0) { return; }
        fmt::print(stderr, "\r{} of {}, {} failed{}", done_, all_, failed_, done_ == all_ ? "\n" : "");
    }

private:
    size_t all_;
    size_t done_ = 0;
    size_t failed_ = 0;
};

}  // namespace

void list(const std::vector<std::string>& cases) {
    unsigned chapter = 0;
    for (const Case* each : chosen(cases)) {
        if (each->number.chapter != chapter) {
            chapter = each->number.chapter;
            fmt::print("{} {}\n", chapter, title_of_chapter(chapter));
        }
        fmt::print("  {:8} {}\n", each->number.words(), each->title);
    }
}

void request_stop() noexcept { stop(); }

bool run(const Request& request) {
    const Till till = till_for(request);
    const std::vector<const Case*> cases = chosen(request.cases);
    if (!request.report.empty()) { prepare_reports(request.report); }
    Progress progress(cases.size());
    const std::vector<Result> results =
        examine(cases, till, jobs_for(request), [&](const Result& result) { progress.tell(result); });
    if (is_stopped()) { throw std::runtime_error("the exam was ended before its end"); }
    fmt::print("{}", text_report(results));
    if (!request.report.empty()) { write_reports(request.report, till, results); }
    return std::ranges::all_of(results, &Result::is_good);
}

}  // namespace quorvel::sim::exam
