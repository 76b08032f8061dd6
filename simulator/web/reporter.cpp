// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/web/reporter.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "simulator/control/utf8.h"
#include "simulator/control/verbs.h"
#include "simulator/web/json_text.h"

namespace quorvel::sim::web {

using nlohmann::json;

namespace {

constexpr std::chrono::milliseconds kPause{20};
constexpr std::chrono::milliseconds kSlowPause{200};
constexpr std::chrono::milliseconds kLongest{1000};
constexpr size_t kMostFindings = 100;

constexpr std::array<std::pair<Progress::Mark, std::string_view>, 4> kMarks{{{Progress::Mark::kDue, "due"},
                                                                             {Progress::Mark::kNow, "now"},
                                                                             {Progress::Mark::kDone, "done"},
                                                                             {Progress::Mark::kFailed, "failed"}}};

json to_json(const std::vector<Progress::Line>& lines, bool withheld) {
    json list = json::array();
    for (const Progress::Line& line : lines) {
        const auto* mark = std::ranges::find(kMarks, line.mark, &std::pair<Progress::Mark, std::string_view>::first);
        list.push_back(
            {{"line", line.line}, {"words", withheld ? line.openWords : line.words}, {"status", mark->second}});
    }
    return list;
}

}  // namespace

Reporter::Reporter(Bulletin& bulletin, Control& control, const Performance* performance, Bulletin::Values values)
    : bulletin_(bulletin), control_(control), performance_(performance), values_(values), thread_([this] { work(); }) {}

Reporter::~Reporter() {
    stopping_ = true;
    bulletin_.close();
    thread_.join();
}

void Reporter::work() {
    while (bulletin_.await_touch(kLongest) && !stopping_) {
        if (readers_ == 0) { continue; }
        {
            const std::lock_guard lock(mutex_);
            report_quick();
            if (Clock::now() >= slowAt_) { report_slow(); }
        }
        std::this_thread::sleep_for(kPause);
    }
}

void Reporter::report() {
    const std::lock_guard lock(mutex_);
    report_quick();
    report_slow();
}

void Reporter::report_quick() {
    bulletin_.post("state", text_of(state()));
    post_answer("screen");
    post_answer("faults");
    post_answer("plans");
    bulletin_.post("findings", text_of(findings()));
    bulletin_.post("scenario", text_of(scenario()));
}

void Reporter::report_slow() {
    bulletin_.post("cards", text_of(cards()));
    post_answer("session");
    post_answer("tables");
    slowAt_ = Clock::now() + kSlowPause;
}

void Reporter::post_answer(const std::string& verb) {
    json answer = std::get<json>(control_.perform({{"do", verb}}));
    answer.erase("ok");
    bulletin_.post(verb, text_of(answer));
}

json Reporter::state() const {
    json state = std::get<json>(control_.perform({{"do", "state"}}));
    state.erase("ok");
    state["inserted"] = nullptr;
    const State board = control_.pin_pad().board().state();
    if (!board.cardInserted) { return state; }
    const Cards cards = control_.cards();
    const auto names = cards.names();
    const auto isIt = [&](const std::string& name) {
        return cards.at(name).chip && cards.at(name).pan == board.cardNumber;
    };
    const auto found = std::ranges::find_if(names, isIt);
    state["inserted"] = found != names.end() ? *found : "a card without a name";
    return state;
}

json Reporter::cards() const {
    const Cards cards = control_.cards();
    json list = json::array();
    for (const std::string& name : cards.names()) {
        const Card& card = cards.at(name);
        list.push_back({{"name", name},
                        {"stripe", card.has_stripe()},
                        {"chip", card.chip.has_value()},
                        {"contactless", card.contactless.has_value()}});
        if (values_ == Bulletin::Values::kWithheld) { continue; }
        list.back()["pan"] = card.pan;
        if (card.chip) { list.back()["pin"] = card.chip->pin; }
    }
    return {{"cards", list}};
}

json Reporter::findings() const {
    const std::vector<Finding> all = control_.pin_pad().findings();
    json list = json::array();
    for (size_t i = all.size() - std::min(all.size(), kMostFindings); i < all.size(); ++i) {
        list.push_back(sim::to_json(all[i]));
    }
    return {{"findings", list}, {"count", all.size()}};
}

json Reporter::scenario() const {
    if (performance_ == nullptr) { return nullptr; }
    Progress progress;
    control_.pin_pad().visit([&](const Device& /*device*/) { progress = performance_->progress(); });
    const bool withheld = values_ == Bulletin::Values::kWithheld;
    // A complaint may hold anything that the host has sent.
    for (std::string& complaint : progress.complaints) {
        if (withheld) { complaint = complaint.substr(0, complaint.find(": ")) + ": not as expected"; }
    }
    return {{"file", performance_->scenario().file},
            {"title", performance_->scenario().title},
            {"steps", to_json(progress.steps, withheld)},
            {"expectations", to_json(progress.expectations, withheld)},
            {"complaints", progress.complaints}};
}

}  // namespace quorvel::sim::web
