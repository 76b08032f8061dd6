// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "simulator/exam/examiner.h"
#include "simulator/exam/report.h"
#include "simulator/files/toml_table.h"
#include "tests/core/temp_dir.h"
#include "tests/simulator/fixture.h"
#include "tests/support/child.h"

namespace quorvel::sim::exam {
namespace {

using Texts = std::vector<std::string>;

Till from_text(const std::string& text) { return from_document<Till>(text); }

// A till that is a line of the shell.
Till shell(const std::string& line) {
    Till till;
    till.command = {"/bin/sh", "-c", line};
    till.limit = std::chrono::seconds(2);
    return till;
}

Result examined(const std::string& number, const Till& till) { return examine(*chosen({number}).front(), till); }

TEST(ExamTill, FileIsRefusedWithTheLineAndTheKey) {
    const std::pair<const char*, const char*> rows[]{
        {"", "line 1: title: is missing"},
        {"title = 'a'\ntakes = ['chips']", "line 2: takes: there is no \"chips\""},
        {"title = 'a'\nlimit = 0", "line 2: limit: 0 is not from 1 to 600"},
        {"title = 'a'\n[host]\ndeclines = 'no'", "line 2: host.approves: is missing"},
        {"title = 'a'\n[host]\napproves = ''\nnever = ''", "line 4: host.never: there is no such key"},
        {"title = 'a'\n[outcome.paid]\nexit = [0]", "line 2: outcome.not-paid: is missing"},
        {"title = 'a'\n[outcome.paid]\n", "line 2: outcome.paid.exit: is missing, and so is output"},
        {"title = 'a'\n[outcome.paid]\nexit = [256]", "line 3: outcome.paid.exit: not of numbers from 0 to 255"},
        {"title = 'a'\n[outcome.paid]\nexit = 0", "line 3: outcome.paid.exit: no list of numbers"},
        {"title = 'a'\n[outcome.paid]\noutput = '('", "line 3: outcome.paid.output: no regular expression"},
        {"title = 'a'\n[session]\nsecure = ''", "line 3: session.secure: there is no such key"},
    };
    for (const auto& [text, due] : rows) {
        EXPECT_EQ(thrown([&, &bad = text] { from_text(bad); }), due) << text;
    }
}

TEST(ExamTill, TakesItsOrderInItsOwnWords) {
    Till till = from_text(
        "title = 'a'\ncommand = ['t', '{port}', '--{session}', '{session}', '{amount}/{cents}', '{host}', '']\n"
        "[host]\napproves = 'ok'\n[session]\nplain = ''\nencrypted = 's'");
    EXPECT_EQ(till.command_for({.port = "/p", .cents = 1205}), (Texts{"t", "/p", "--", "12.05/1205", "ok", ""}));
    EXPECT_EQ(till.command_for({.port = "/p", .cents = 9, .encrypted = true}),
              (Texts{"t", "/p", "--s", "s", "0.09/9", "ok", ""}));
    EXPECT_EQ(unfit(*chosen({"6.1.1"}).front(), till), "the till has no acquirer that \"declines\"");
    EXPECT_EQ(unfit(*chosen({"1.2.1"}).front(), till), "the till takes no \"stripe\"");
}

TEST(ExamTill, SaysWhatHasBecomeOfTheSale) {
    const Till till = from_text(
        "title = 'a'\n[outcome.paid]\nexit = [0]\noutput = '^PAID$'\n[outcome.not-paid]\nexit = [1]\n"
        "[outcome.unknown]\noutput = 'NOBODY'\n[outcome.reversal]\noutput = '^OWED'");
    const std::tuple<int, const char*, std::optional<Outcome>> rows[]{
        {0, "x\nPAID\ny", Outcome::kPaid},
        {0, "UNPAID", {}},
        {1, "", Outcome::kNotPaid},
        {1, "\nOWED 1", Outcome::kReversal},
        {1, "NOBODY KNOWS", {}},
        {3, "NOBODY KNOWS\nOWED", Outcome::kUnknown},
        {0, "PAID\nOWED", {}},
        {134, "", {}},
    };
    for (const auto& [exit, output, due] : rows) { EXPECT_EQ(till.outcome_of({exit, output}), due) << exit << output; }
}

TEST(ExamCases, HaveNumbersOfTheirOwnAndAreChosenByThem) {
    std::set<Number> numbers;
    for (const Case& each : catalogue()) {
        EXPECT_TRUE(numbers.insert(each.number).second) << each.number.words();
        EXPECT_FALSE(title_of_chapter(each.number.chapter).empty());
        EXPECT_FALSE(each.title.empty() || each.why.empty() || each.must.empty()) << each.number.words();
    }
    EXPECT_EQ(chosen({}).size(), numbers.size());
    EXPECT_GE(numbers.size(), 120U);
    EXPECT_EQ(chosen({"2.8.1", "2.8.1"}).size(), 1U);
    EXPECT_EQ(chosen({"2.1"}).size() + chosen({"2.10.*"}).size(), chosen({"2.10", "2.1"}).size());
    EXPECT_EQ(chosen({"*a load was BEGUN*"}).front()->number.words(), "8.1.4");
    EXPECT_EQ(thrown([] { static_cast<void>(chosen({"1", "99"})); }), "there is no case \"99\": --list names them");
}

// None of these tills asks the PIN pad for anything.
TEST(Exam, TellsOneFaultFromTheOther) {
    const std::tuple<const char*, const char*, Verdict, const char*> rows[]{
        {"1.1.1", "exit 0", Verdict::kMoney, R"(the till says "paid"; right is "not paid": no card was read)"},
        {"1.1.1", "exit 5", Verdict::kConduct, "the till has not come to \"paid\": no card was read"},
        {"1.1.1", "exit 9", Verdict::kBroken, "the till says nothing that is known, exit 9"},
        {"1.1.1", "echo REVERSE; exit 0", Verdict::kBroken, "the till says paid and reversal at once, exit 0"},
        {"1.1.1", "kill -ABRT $$", Verdict::kBroken, "the till says nothing that is known, exit 134"},
        {"1.1.1", "sleep 60", Verdict::kState, "the till did not end within 2 s"},
        {"9.1.7", "sleep 60 & exit 5", Verdict::kState, "something of the till went on running"},
        {"9.1.7", "[ ! -e $QUORVEL_EXAM_PORT ] && exit 5", Verdict::kPassed, ""},
        {"2.6.1", "exit 5", Verdict::kConduct, "the till never sent GCX or GCR"},
        {"1.2.1", "exit 5", Verdict::kNotApplicable, "the till takes no \"stripe\""},
        {"4.1.2", "printf '\\026half' >$QUORVEL_EXAM_PORT; exit 5", Verdict::kPassed, ""},
        {"4.1.2", "printf '\\006' >$QUORVEL_EXAM_PORT; exit 5", Verdict::kConduct,
         "the PIN pad complains (framing): ACK outside a frame"},
    };
    for (const auto& [number, line, verdict, why] : rows) {
        const Result result = examined(number, shell(line));
        EXPECT_EQ(name_of(result.verdict), name_of(verdict)) << line;
        EXPECT_EQ(result.why.empty() ? "" : result.why.front(), why) << line;
    }
}

TEST(Exam, TellsTheTillItsOrderInTheEnvironmentToo) {
    const Result result = examined("6.3.1", shell("env | grep ^QUORVEL_EXAM_ | grep -v PORT | sort; exit 5"));
    EXPECT_EQ(result.output,
              "QUORVEL_EXAM_AMOUNT=12.34\nQUORVEL_EXAM_CASE=6.3.1\nQUORVEL_EXAM_CENTS=1234\nQUORVEL_EXAM_HOST=late\n"
              "QUORVEL_EXAM_SESSION=plain\n");
}

TEST(ExamReport, ShowsWhatTheTillPrintsAsText) {
    EXPECT_EQ(escaped("<a b='\"&\"'>\t\n"), "&lt;a b=&#39;&quot;&amp;&quot;&#39;&gt;\t\n");
    EXPECT_EQ(escaped("\x01\x1B[0m\xFF\xC3\xA9\xEF\xBF\xBF"s),
              "\xEF\xBF\xBD\xEF\xBF\xBD[0m\xEF\xBF\xBD\xC3\xA9\xEF\xBF\xBD");
    const std::vector<Result> results{{.asked = chosen({"1.1.1"}).front(),
                                       .verdict = Verdict::kMoney,
                                       .why = {"]]></failure>"},
                                       .output = "</pre><script>alert(1)</script>\xFF"}};
    const std::string shown = page(shell(""), results);
    EXPECT_EQ(shown.find("<script>alert"), std::string::npos);
    EXPECT_NE(shown.find("&lt;script&gt;alert(1)"), std::string::npos);
    EXPECT_EQ(shown.find("src="), std::string::npos);
    EXPECT_EQ(junit_report(shell(""), results).find("]]></failure>"), std::string::npos);
    const auto json = nlohmann::json::parse(json_report(shell(""), results));
    EXPECT_EQ(json["cases"][0]["output"], "</pre><script>alert(1)</script>\xEF\xBF\xBD");
    EXPECT_EQ(json["summary"]["money"], 1);
}

// As a user runs it; what it prints, and its exit status.
std::pair<int, std::string> run(Texts arguments) {
    arguments.insert(arguments.begin(), {QUORVEL_SIM, "exam"});
    support::Child program(std::move(arguments));
    const int status = program.wait();
    return {status, program.output() + program.errors()};
}

TEST(ExamProgram, ReportsAndEndsAsItShould) {
    const TempDir folder;
    const Texts some{"--case", "9.1.7", "--case", "1.2.1", "--case", "1.1.1", "--report", folder / "deep/report"};
    Texts failing = some;
    failing.insert(failing.end(), {"--", "/bin/sh", "-c", "echo '<&'; exit 5"});
    EXPECT_EQ(run(failing),
              std::pair(1, "1.1.1    conduct  a chip that wants a signature\n"s + std::string(18, ' ')
                               + "the till has not come to \"paid\": no card was read\n3 cases: 1 passed, 1 not "
                                 "applicable; failed: 0 money, 0 state, 1 conduct; 0 broken\n"));
    const auto json = nlohmann::json::parse(std::ifstream(folder / "deep/report/exam.json"));
    Texts results;
    for (const auto& each : json["cases"]) { results.push_back(each["result"]); }
    EXPECT_EQ(results, (Texts{"conduct", "not-applicable", "passed"}));
    support::Child xml({"/usr/bin/env", "python3", "-c",
                        R"(import sys, xml.etree.ElementTree as t
for s in t.parse(sys.argv[1]).getroot(): print(*[s.get(n) for n in ('name', 'tests', 'failures', 'skipped')]))",
                        folder / "deep/report/exam.xml"});
    EXPECT_EQ(xml.wait(), 0);
    EXPECT_EQ(xml.output(), "1 Sales in which nothing goes wrong 2 1 1\n9 The port 1 0 0\n");
    EXPECT_EQ(run({"--case", "9.1.7", "--", "/bin/sh", "-c", "exit 5"}).first, 0);
    EXPECT_EQ(run({"--list", "--case", "9.1.7"}), std::pair(0, "9 The port\n  9.1.7    there is no port\n"s));
    const std::pair<Texts, std::string> refused[]{
        {{}, "no till: name its command behind --, or in its file"},
        {{"--till", "/nowhere.toml"}, "/nowhere.toml cannot be read"},
        {{"--case", "77", "--", "true"}, "there is no case \"77\": --list names them"},
        {{"--case", "9.1.7", "--", "true", "{amount}", "{prot}"}, "there is no placeholder \"{prot}\""},
        {{"--case", "9.1.7", "--", "/nowhere/till"}, "/nowhere/till: No such file or directory"},
    };
    for (const auto& [arguments, why] : refused) {
        EXPECT_EQ(run(arguments), std::pair(2, "quorvel-sim: " + why + "\n"));
    }
}

#ifdef QUORVEL_EXAMPLES
// A dozen of the cases; scripts/exam runs them all.
TEST(ExamProgram, FindsNoFaultInTheExamples) {
    for (const std::string name : {"sale", "cpp_sale"}) {
        Texts arguments{"--till", QUORVEL_TILLS "/sale-in-c.toml", "--jobs", "12"};
        for (const char* number : {"1.1.3", "2.6.3", "2.7.5", "2.8.12", "3.7.4", "4.2.3", "4.3.3", "6.2.1", "6.4.1",
                                   "7.1.3", "8.1.4", "9.1.2"}) {
            arguments.insert(arguments.end(), {"--case", number});
        }
        arguments.insert(arguments.end(), {"--", QUORVEL_EXAMPLES "/" + name, "{port}", "{cents}", "{host}"});
        EXPECT_EQ(run(arguments), std::pair(0,
                                            "12 cases: 12 passed, 0 not applicable; failed: 0 money, 0 state, 0 "
                                            "conduct; 0 broken\n"s))
            << name;
    }
}
#endif

}  // namespace
}  // namespace quorvel::sim::exam
