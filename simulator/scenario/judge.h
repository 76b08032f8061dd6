// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_SCENARIO_JUDGE_H
#define QUORVEL_SIMULATOR_SCENARIO_JUDGE_H

#include <string>
#include <vector>

#include "simulator/scenario/progress.h"
#include "simulator/scenario/scenario.h"
#include "simulator/watch/exchange.h"
#include "simulator/watch/finding.h"

namespace quorvel::sim {

// Compares what the host does with what a scenario, which must outlive it, expects.
//
// Expectations in order are about the next command that has their id: commands with another id may come in between.
// Those for anywhere count the commands that are just so, and let pass the others.
class Judge {
public:
    explicit Judge(const Scenario& scenario);

    void exchanged(const Exchange& exchange);

    // Every expectation is met as things stand.
    [[nodiscard]] bool is_content() const;
    // One can be met no more.
    [[nodiscard]] bool has_decided() const { return !complaints_.empty(); }
    // Those in order, then those for anywhere.
    [[nodiscard]] std::vector<Progress::Line> progress() const;
    // What was wrong so far, in words.
    [[nodiscard]] std::vector<std::string> complaints() const;
    // All that is wrong, in words, in the order of the file.
    [[nodiscard]] std::vector<std::string> complaints(const std::vector<Finding>& findings) const;

private:
    struct Count {
        const Expectation& expected;
        unsigned met = 0;
        // What was different about the last one that was not met.
        std::string almost = {};
    };

    struct Complaint {
        uint32_t line;
        std::string words;
    };

    [[nodiscard]] std::vector<std::string> words_of(const std::vector<Complaint>& complaints) const;
    void compare_next(const Exchange& exchange);
    void complain_of_counts(std::vector<Complaint>& complaints) const;
    void complain_of_findings(std::vector<Complaint>& complaints, const std::vector<Finding>& findings) const;

    const Scenario& scenario_;
    std::vector<Count> ordered_;
    size_t next_ = 0;
    std::vector<Count> anywhere_;
    std::vector<Complaint> complaints_;
    // The ids since the last expectation in order was met.
    std::vector<std::string> since_;
};

}  // namespace quorvel::sim

#endif
