// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "tests/core/temp_dir.h"
#include "tests/support/child.h"

namespace {

// What the exam says of the till that makes the mistake, in these cases.
struct Row {
    std::string mistake;
    std::vector<std::string> cases;
    std::string verdict;
};

// The exam of the till, in some of its cases.
class Exam {
public:
    Exam(const std::string& mistake, const std::vector<std::string>& cases)
        : child_(command(folder_ / "report", mistake, cases)) {}

    // The verdicts, which are that on all cases together as well: the exit status says whether none failed.
    std::vector<std::string> verdicts() {
        const int status = child_.wait();
        if (status != 0 && status != 1) {
            ADD_FAILURE() << child_.errors();
            return {};
        }
        const auto report = nlohmann::json::parse(std::ifstream(folder_ / "report/exam.json"));
        std::vector<std::string> verdicts;
        for (const auto& each : report.at("cases")) {
            verdicts.push_back(each.at("result"));
            EXPECT_EQ(each.at("why").empty(), verdicts.back() == "passed");
            if (verdicts.back() != "passed") { EXPECT_EQ(status, 1) << child_.output() << child_.errors(); }
        }
        if (verdicts == std::vector<std::string>(verdicts.size(), "passed")) { EXPECT_EQ(status, 0); }
        return verdicts;
    }

private:
    static std::vector<std::string> command(const std::string& report, const std::string& mistake,
                                            const std::vector<std::string>& cases) {
        std::vector<std::string> words{QUORVEL_SIM, "exam", "--till", EXAM_TILL_FILE, "--report", report};
        for (const std::string& each : cases) { words.insert(words.end(), {"--case", each}); }
        words.insert(words.end(), {"--", EXAM_TILL, "--port", "{port}", "--cents", "{cents}", "--host", "{host}",
                                   "--patience", "2", "--mistake", mistake});
        return words;
    }

    TempDir folder_;
    support::Child child_;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.mistake; }

class Mistakes : public testing::TestWithParam<Row> {};

TEST_P(Mistakes, AreFoundWhereATillWithoutThemPasses) {
    const Row& row = GetParam();
    Exam wrong(row.mistake, row.cases);
    Exam right("none", row.cases);
    EXPECT_EQ(wrong.verdicts(), std::vector<std::string>(row.cases.size(), row.verdict)) << row.mistake;
    EXPECT_EQ(right.verdicts(), std::vector<std::string>(row.cases.size(), "passed")) << row.mistake;
}

const Row kRows[]{
    {"paid-when-online", {"6.1.1", "6.4.1"}, "money"},
    {"ignores-gox-status", {"4.1.2", "3.6.4"}, "money"},
    {"ignores-gox-decline", {"5.3.1"}, "money"},
    {"ignores-fcx", {"6.4.1", "3.7.1"}, "money"},
    {"accepts-any-code", {"6.1.1", "6.1.4"}, "money"},
    {"lies-to-card", {"6.1.1", "6.2.1"}, "money"},
    {"pays-stripe-unasked", {"6.1.4", "6.2.4"}, "money"},
    {"pays-contactless-unasked", {"6.1.3", "6.2.3"}, "money"},
    {"not-paid-when-lost", {"2.8.1"}, "money"},
    {"paid-when-lost", {"2.8.1"}, "money"},
    {"no-reversal-when-card-declines", {"6.4.1"}, "money"},
    {"forgets-late-yes", {"6.3.1"}, "money"},
    {"amount-times-100", {"1.1.1", "1.4.1"}, "money"},
    {"amount-differs-in-gox", {"1.1.1"}, "money"},
    {"drops-cents", {"1.4.8"}, "money"},
    {"amount-in-32-bits", {"1.4.13"}, "money"},
    {"hands-out-cash", {"1.1.1"}, "money"},
    {"ignores-tables-version", {"8.1.1", "8.1.2"}, "conduct"},
    {"loads-tables-halfway", {"8.1.2"}, "conduct"},
    {"swallows-cancel", {"4.1.1"}, "conduct"},
    {"never-closes", {"1.1.1"}, "state"},
    {"leaves-card-inside", {"1.1.1"}, "state"},
    {"waits-forever", {"2.6.1"}, "state"},
    {"leaves-without-can", {"4.1.7"}, "state"},
    {"holds-port", {"1.1.1"}, "state"},
    {"never-tells-card", {"6.1.1"}, "conduct"},
    {"gox-twice", {"1.1.1"}, "conduct"},
    {"retries-fcx", {"2.8.1"}, "conduct"},
    {"dies-of-interrupt", {"7.1.1"}, "broken"},
};
TEST(ExamEnds, WithTheTillsThatRun) {
    const TempDir folder;
    const std::string pipe = folder / "process";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    support::Child exam(
        {QUORVEL_SIM, "exam", "--case", "1.1.1", "--", "sh", "-c", "echo $$ >" + pipe + "; exec sleep 60"});
    pid_t till = 0;
    std::ifstream(pipe) >> till;
    EXPECT_EQ(exam.end(SIGTERM), 2);
    EXPECT_EQ(kill(till, 0), -1);
    EXPECT_EQ(exam.errors(), "quorvel-sim: the exam was ended before its end\n");
}

INSTANTIATE_TEST_SUITE_P(Exam, Mistakes, testing::ValuesIn(kRows), [](const auto& row) {
    std::string name = row.param.mistake;
    std::erase(name, '-');
    return name;
});

}  // namespace
