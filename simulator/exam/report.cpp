// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/exam/report.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

namespace quorvel::sim::exam {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr const char* kNoCharacter = "\xEF\xBF\xBD";

std::string dumped(const Json& json, int indent = -1) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

// Whatever is no UTF-8 is replaced by the sign for that.
std::string valid(std::string_view text) { return Json::parse(dumped(Json(text))).get<std::string>(); }

size_t count(const std::vector<Result>& results, Verdict verdict) {
    return static_cast<size_t>(std::ranges::count(results, verdict, &Result::verdict));
}

double seconds(const Result& result) { return std::chrono::duration<double>(result.time).count(); }

Json json_of(const Result& result) {
    const Case& asked = *result.asked;
    return {{"number", asked.number.words()},
            {"title", asked.title},
            {"result", name_of(result.verdict)},
            {"why", result.why},
            {"expected", result.expected},
            {"said", result.said},
            {"truth", result.truth},
            {"seconds", seconds(result)},
            {"traffic", result.traffic},
            {"output", result.output}};
}

Json summary(const std::vector<Result>& results) {
    Json counts = Json::object();
    for (const Verdict each : {Verdict::kPassed, Verdict::kMoney, Verdict::kState, Verdict::kConduct,
                               Verdict::kNotApplicable, Verdict::kBroken}) {
        counts[std::string(name_of(each))] = count(results, each);
    }
    return counts;
}

std::string junit_case(const Result& result) {
    const Case& asked = *result.asked;
    std::string inside;
    const std::string why = escaped(fmt::format("{}", fmt::join(result.why, "; ")));
    if (result.verdict == Verdict::kNotApplicable) {
        inside = fmt::format("      <skipped message=\"{}\"/>\n", why);
    } else if (!result.is_good()) {
        inside = fmt::format("      <failure type=\"{}\" message=\"{}\"/>\n", name_of(result.verdict), why);
    }
    return fmt::format("    <testcase classname=\"{}\" name=\"{} {}\" time=\"{:.3f}\">\n{}    </testcase>\n",
                       escaped(title_of_chapter(asked.number.chapter)), asked.number.words(), escaped(asked.title),
                       seconds(result), inside);
}

using Chapters = std::map<unsigned, std::vector<Result>>;

Chapters by_chapter(const std::vector<Result>& results) {
    Chapters all;
    for (const Result& each : results) { all[each.asked->number.chapter].push_back(each); }
    return all;
}

void write(const fs::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    if (!(file << text << std::flush)) { throw std::runtime_error(path.string() + " cannot be written"); }
}

}  // namespace

std::string_view title_of_chapter(unsigned number) noexcept {
    const auto found = std::ranges::find(chapters(), number, &Chapter::number);
    return found != chapters().end() ? found->title : "";
}

std::string escaped(std::string_view text) {
    static const std::map<char, std::string> kReplaced{
        {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};
    std::string safe;
    for (const char each : valid(text)) {
        const auto found = kReplaced.find(each);
        const bool control = (static_cast<unsigned char>(each) < 0x20 && each != '\n' && each != '\t') || each == 0x7F;
        safe += found != kReplaced.end() ? found->second : control ? kNoCharacter : std::string(1, each);
    }
    for (const char* none : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        for (size_t at = 0; (at = safe.find(none, at)) != std::string::npos;) { safe.replace(at, 3, kNoCharacter); }
    }
    return safe;
}

std::string text_report(const std::vector<Result>& results) {
    std::string text;
    for (const Result& each : results) {
        if (each.is_good()) { continue; }
        text += fmt::format("{:8} {:8} {}\n", each.asked->number.words(), name_of(each.verdict), each.asked->title);
        for (const std::string& why : each.why) { text += fmt::format("{:17} {}\n", "", why); }
    }
    const auto of = [&](Verdict verdict) { return count(results, verdict); };
    text += fmt::format("{} cases: {} passed, {} not applicable", results.size(), of(Verdict::kPassed),
                        of(Verdict::kNotApplicable));
    text += fmt::format("; failed: {} money, {} state, {} conduct; {} broken\n", of(Verdict::kMoney),
                        of(Verdict::kState), of(Verdict::kConduct), of(Verdict::kBroken));
    return text;
}

std::string json_report(const Till& till, const std::vector<Result>& results) {
    Json cases = Json::array();
    for (const Result& each : results) { cases.push_back(json_of(each)); }
    return dumped({{"till", till.title}, {"summary", summary(results)}, {"cases", std::move(cases)}}, 1) + "\n";
}

std::string junit_report(const Till& till, const std::vector<Result>& results) {
    std::string suites;
    for (const auto& [number, own] : by_chapter(results)) {
        const auto good = static_cast<size_t>(std::ranges::count_if(own, &Result::is_good));
        std::string cases;
        double time = 0;
        for (const Result& each : own) {
            cases += junit_case(each);
            time += seconds(each);
        }
        suites += fmt::format(
            "  <testsuite name=\"{} {}\" tests=\"{}\" failures=\"{}\" errors=\"0\" skipped=\"{}\" time=\"{:.3f}\">\n"
            "{}  </testsuite>\n",
            number, escaped(title_of_chapter(number)), own.size(), own.size() - good,
            count(own, Verdict::kNotApplicable), time, cases);
    }
    return fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"{}\">\n{}</testsuites>\n",
                       escaped(till.title), suites);
}

void prepare_reports(const std::string& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) { throw std::runtime_error(fmt::format("{}: {}", folder, error.message())); }
    if (::access(folder.c_str(), W_OK) != 0) {
        throw std::runtime_error(fmt::format("{}: {}", folder, std::generic_category().message(errno)));
    }
}

void write_reports(const std::string& folder, const Till& till, const std::vector<Result>& results) {
    write(fs::path(folder) / "exam.json", json_report(till, results));
    write(fs::path(folder) / "exam.xml", junit_report(till, results));
    write(fs::path(folder) / "index.html", page(till, results));
}

}  // namespace quorvel::sim::exam
