// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <fmt/format.h>
#include <map>

#include "simulator/exam/report.h"

namespace quorvel::sim::exam {

namespace {

constexpr std::string_view kHead = R"html(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'">
<style>
:root { color-scheme: light dark; --good: #1a7f37; --bad: #cf222e; --warn: #9a6700; --dim: #6e7781; }
body { font: 15px/1.5 system-ui, sans-serif; max-width: 70rem; margin: 2rem auto; padding: 0 1rem; }
table { border-collapse: collapse; }
td, th { padding: .2rem .8rem; text-align: right; border-bottom: 1px solid #8884; }
td:first-child, th:first-child { text-align: left; }
details { border-bottom: 1px solid #8884; padding: .3rem 0; }
summary { cursor: pointer; }
pre { overflow-x: auto; background: #8881; padding: .5rem; }
dt { font-weight: 600; }
.result { display: inline-block; min-width: 7.5rem; font-weight: 600; color: var(--bad); }
.passed .result { color: var(--good); }
.not-applicable .result { color: var(--dim); }
.conduct .result { color: var(--warn); }
#filter { position: sticky; top: 0; background: Canvas; padding: .5rem 0; }
</style>
)html";

constexpr std::string_view kFilter = R"html(<p id="filter"><label>Show <select id="kind"><option value="">all</option>
<option value="failed">what failed</option><option value="money">money</option><option value="state">state</option>
<option value="conduct">conduct</option><option value="broken">broken</option><option value="passed">passed</option>
<option value="not-applicable">not applicable</option></select></label>
<label>with <input id="text" type="search" placeholder="number or words"></label></p>
)html";

constexpr std::string_view kScript = R"html(<script>
const kind = document.getElementById('kind'), text = document.getElementById('text');
function show() {
  for (const each of document.querySelectorAll('details')) {
    const own = each.className, failed = own !== 'passed' && own !== 'not-applicable';
    const fits = !kind.value || own === kind.value || (kind.value === 'failed' && failed);
    each.hidden = !fits || !each.textContent.toLowerCase().includes(text.value.toLowerCase());
  }
}
kind.addEventListener('change', show);
text.addEventListener('input', show);
</script>
)html";

std::string entry(std::string_view name, std::string_view value) {
    return value.empty() ? "" : fmt::format("<dt>{}</dt><dd>{}</dd>\n", name, escaped(value));
}

std::string lines(std::string_view name, const std::string& text) {
    return text.empty() ? "" : fmt::format("<dt>{}</dt><dd><pre>{}</pre></dd>\n", name, escaped(text));
}

std::string joined(const std::vector<std::string>& all) {
    std::string text;
    for (const std::string& each : all) { text += each + "\n"; }
    return text;
}

std::string details(const Result& result) {
    const Case& asked = *result.asked;
    std::string inside = entry("Why it matters", asked.why) + entry("What a till must do", asked.must);
    for (const std::string& why : result.why) { inside += entry("Result", why); }
    inside += entry("Right to say", result.expected) + entry("The till says", result.said);
    inside += entry("The PIN pad knows", result.truth);
    inside += lines("On the line (seconds; &gt; the till, &lt; the PIN pad)", joined(result.traffic));
    inside += lines("The till's output", result.output);
    return fmt::format(
        "<details class=\"{0}\" id=\"c{1}\"><summary><span class=\"result\">{0}</span> {1} {2}</summary>\n"
        "<dl>\n{3}</dl>\n</details>\n",
        name_of(result.verdict), asked.number.words(), escaped(asked.title), inside);
}

constexpr std::array kColumns{Verdict::kPassed,  Verdict::kMoney,         Verdict::kState,
                              Verdict::kConduct, Verdict::kNotApplicable, Verdict::kBroken};

std::string row(std::string_view name, const std::vector<Result>& results) {
    std::string cells;
    for (const Verdict each : kColumns) {
        cells += fmt::format("<td>{}</td>", std::ranges::count(results, each, &Result::verdict));
    }
    return fmt::format("<tr><td>{}</td>{}</tr>\n", name, cells);
}

std::string table(const std::map<unsigned, std::vector<Result>>& chapters, const std::vector<Result>& results) {
    std::string heads;
    for (const Verdict each : kColumns) { heads += fmt::format("<th>{}</th>", name_of(each)); }
    std::string rows;
    for (const auto& [number, own] : chapters) {
        rows += row(fmt::format("<a href=\"#chapter{0}\">{0} {1}</a>", number, escaped(title_of_chapter(number))), own);
    }
    return fmt::format("<table>\n<tr><th>Chapter</th>{}</tr>\n{}{}</table>\n", heads, rows, row("all", results));
}

}  // namespace

std::string page(const Till& till, const std::vector<Result>& results) {
    std::map<unsigned, std::vector<Result>> chapters;
    for (const Result& each : results) { chapters[each.asked->number.chapter].push_back(each); }
    const std::string title = fmt::format("Exam of {}", escaped(till.title));
    std::string text{kHead};
    text += fmt::format("<title>{0}</title>\n</head>\n<body>\n<h1>{0}</h1>\n", title);
    text += table(chapters, results);
    text += kFilter;
    for (const auto& [number, own] : chapters) {
        text += fmt::format("<h2 id=\"chapter{0}\">{0} {1}</h2>\n", number, escaped(title_of_chapter(number)));
        for (const Result& each : own) { text += details(each); }
    }
    text += kScript;
    return text + "</body>\n</html>\n";
}

}  // namespace quorvel::sim::exam
