// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_EXAM_REPORT_H
#define QUORVEL_SIMULATOR_EXAM_REPORT_H

#include <string>
#include <string_view>
#include <vector>

#include "simulator/exam/examiner.h"

namespace quorvel::sim::exam {

[[nodiscard]] std::string_view title_of_chapter(unsigned number) noexcept;

// What has failed, and how many there were of each kind.
[[nodiscard]] std::string text_report(const std::vector<Result>& results);

// For programs, for CI systems, and for people: the last one is a page that needs nothing else.
[[nodiscard]] std::string json_report(const Till& till, const std::vector<Result>& results);
[[nodiscard]] std::string junit_report(const Till& till, const std::vector<Result>& results);
[[nodiscard]] std::string page(const Till& till, const std::vector<Result>& results);

// exam.json, exam.xml and index.html. Throws std::runtime_error for what cannot be written.
void prepare_reports(const std::string& folder);
void write_reports(const std::string& folder, const Till& till, const std::vector<Result>& results);

// As XML and HTML take it: what would be markup is not, and what is no character becomes the sign for that.
[[nodiscard]] std::string escaped(std::string_view text);

}  // namespace quorvel::sim::exam

#endif
