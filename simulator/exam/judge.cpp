// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/exam/judge.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace quorvel::sim::exam {

namespace {

class Judging {
public:
    explicit Judging(const Evidence& evidence) : evidence_(evidence) {}

    Judgement run() {
        const Outcomes right = allowed_.in_common_with(evidence_.goal);
        judgement_.expected = words_for(right.empty() ? evidence_.goal : right);
        judgement_.truth = ledger().words();
        if (!concerns() && ended_well()) { return not_applicable(); }
        judge_outcome();
        judge_amounts();
        judge_last_word();
        judge_state();
        judge_conduct();
        std::ranges::stable_sort(faults_, {}, [](const Fault& each) { return rank(each.first); });
        for (Fault& each : faults_) { judgement_.why.push_back(std::move(each.second)); }
        if (!faults_.empty()) { judgement_.verdict = faults_.front().first; }
        return std::move(judgement_);
    }

private:
    [[nodiscard]] const Ledger& ledger() const { return evidence_.sale.ledger; }

    using Fault = std::pair<Verdict, std::string>;

    // Nothing is worse than what cannot be understood, but for money.
    static int rank(Verdict verdict) {
        return verdict == Verdict::kMoney ? 0 : verdict == Verdict::kBroken ? 1 : verdict == Verdict::kState ? 2 : 3;
    }

    void fail(Verdict verdict, std::string why) { faults_.emplace_back(verdict, std::move(why)); }

    [[nodiscard]] bool concerns() const {
        const CommandIds& about = evidence_.asked.about;
        return about.empty() || std::ranges::any_of(about, [this](const std::string& id) {
                   return evidence_.sale.seen.contains(id);
               });
    }

    [[nodiscard]] bool ended_well() const {
        return evidence_.asked.optional && evidence_.ended && evidence_.till.outcome_of(*evidence_.ended);
    }

    Judgement not_applicable() {
        return {.verdict = Verdict::kNotApplicable,
                .why = {fmt::format("the till never sends {}", fmt::join(evidence_.asked.about, " or "))}};
    }

    void judge_outcome() {
        if (!evidence_.ended) {
            judgement_.said = "nothing: it did not end";
            return fail(Verdict::kState, fmt::format("the till did not end within {} s", evidence_.till.limit.count()));
        }
        const auto said = evidence_.till.outcome_of(*evidence_.ended);
        judgement_.said = said ? words_for(*said) : evidence_.till.words_for(*evidence_.ended);
        if (!said) { return fail(Verdict::kBroken, "the till says " + judgement_.said); }
        if (!allowed_.has(*said)) {
            return fail(Verdict::kMoney, fmt::format(R"(the till says "{}"; right is "{}": {})", judgement_.said,
                                                     words_for(allowed_), judgement_.truth));
        }
        if (evidence_.goal.has(*said)) { return; }
        fail(Verdict::kConduct,
             fmt::format("the till has not come to \"{}\": {}", words_for(evidence_.goal), judgement_.truth));
    }

    void judge_amounts() {
        for (const auto& [command, cents] : ledger().amounts()) {
            if (cents == evidence_.cents) { continue; }
            fail(Verdict::kMoney, fmt::format("{} is about {}, not about {}", command, amount_words(cents),
                                              amount_words(evidence_.cents)));
        }
        for (const auto& [command, cents] : ledger().cashbacks()) {
            if (cents == 0) { continue; }
            fail(Verdict::kMoney,
                 fmt::format("{} hands out {}, and nobody has asked for it", command, amount_words(cents)));
        }
        // With a stripe no command has use for it.
        if (allowed_ == Outcomes{Outcome::kPaid} && ledger().went_on() && ledger().amounts().empty()) {
            fail(Verdict::kMoney, "the PIN pad was never told the amount");
        }
    }

    void judge_last_word() {
        const bool refused = evidence_.host == Host::kDeclines || evidence_.host == Host::kUnreachable;
        if (refused && ledger().told_yes()) {
            fail(Verdict::kMoney, "the card was told a yes that no acquirer has said");
        }
    }

    // What a till can still do about it.
    [[nodiscard]] bool line_was_there() const { return evidence_.ended && !ledger().was_cut(); }

    [[nodiscard]] bool may_leave_card() const {
        return ledger().was_struck() || ledger().was_interrupted() || ledger().asked_for_removal();
    }

    void judge_state() {
        if (evidence_.leftBehind) { fail(Verdict::kState, "something of the till went on running"); }
        if (!evidence_.board.waiting.empty()) {
            fail(Verdict::kState, fmt::format("{} still waits", evidence_.board.waiting));
        }
        if (!line_was_there()) { return; }
        if (evidence_.board.session && !evidence_.asked.pardonsSession) {
            fail(Verdict::kState, "the session was left open");
        }
        if (evidence_.board.cardInserted && !may_leave_card()) {
            fail(Verdict::kState, "the card was left inside, and nobody was told to take it out");
        }
    }

    void judge_conduct() {
        if (!concerns()) {
            fail(Verdict::kConduct, fmt::format("the till never sent {}", fmt::join(evidence_.asked.about, " or ")));
        }
        if (ledger().left_undecided()) {
            fail(Verdict::kConduct, "the card has asked for the acquirer and was never told an answer");
        }
        for (const Finding& finding : evidence_.findings) {
            if (!is_pardoned(finding)) { complain(finding); }
        }
    }

    void complain(const Finding& finding) {
        const Verdict verdict = finding.kind == Finding::Kind::kMoney ? Verdict::kMoney : Verdict::kConduct;
        fail(verdict, fmt::format("the PIN pad complains ({}): {}", kind_name(finding.kind), finding.text));
    }

    // Whoever could not know of the session, or was cut off, cannot close it.
    [[nodiscard]] bool is_pardoned(const Finding& finding) const {
        const auto tells = [&](std::string_view part) { return finding.text.find(part) != std::string::npos; };
        if (evidence_.asked.pardonsSession && tells("without CLO")) { return true; }
        if (may_leave_card() && tells("nobody asked for it to be taken out")) { return true; }
        return std::ranges::any_of(evidence_.asked.pardons, tells);
    }

    const Evidence& evidence_;
    const Outcomes allowed_ = evidence_.sale.ledger.allowed(evidence_.host);
    std::vector<Fault> faults_;
    Judgement judgement_;
};

}  // namespace

Judgement judge(const Evidence& evidence) { return Judging(evidence).run(); }

}  // namespace quorvel::sim::exam
