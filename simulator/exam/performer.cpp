// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/exam/performer.h"

#include <algorithm>
#include <csignal>

namespace quorvel::sim::exam {

namespace {

constexpr std::chrono::milliseconds kAbsence{300};

bool is_one_of(const std::string& id, std::initializer_list<std::string_view> ids) {
    return std::ranges::find(ids, id) != ids.end();
}

// The last one goes on being done.
void act_next(PinPad& pinPad, const std::vector<Gestures>& all, size_t& next) {
    if (all.empty()) { return; }
    pinPad.act(all[std::min(next++, all.size() - 1)]);
}

}  // namespace

void Performer::begin(Sale sale, Process* process) {
    const std::lock_guard lock(mutex_);
    sale_ = std::move(sale);
    process_ = process;
    pending_.clear();
    cards_ = entries_ = 0;
}

Performer::Sale Performer::sale() const {
    const std::lock_guard lock(mutex_);
    return sale_;
}

void Performer::crossed(const Traffic& traffic) {
    const std::lock_guard lock(mutex_);
    if (traffic.fault == "hang-up") { lineGoes_(); }
    if (traffic.sender == Sender::kHost) { sale_.seen.insert(id_in(traffic.words)); }
    sale_.ledger.crossed(traffic);
}

void Performer::waits(PinPad& pinPad, const std::string& command) {
    const std::lock_guard lock(mutex_);
    if (!cue(pinPad, Cue::When::kWaits, command)) { act_as_usual(pinPad, command); }
}

void Performer::exchanged(PinPad& pinPad, const Exchange& exchange) {
    const std::lock_guard lock(mutex_);
    sale_.ledger.exchanged(exchange);
    cue(pinPad, Cue::When::kEnded, exchange.command);
}

// Each cue once.
bool Performer::cue(PinPad& pinPad, Cue::When when, const std::string& command) {
    const auto found = std::ranges::find_if(sale_.cues, [&](const Cue& each) {
        return each.when == when && std::ranges::find(each.commands, command) != each.commands.end();
    });
    if (found == sale_.cues.end()) { return false; }
    const Cue due = *found;
    sale_.cues.erase(found);
    if (due.after.count() == 0) {
        perform(pinPad, due);
    } else {
        pending_.push_back({Clock::now() + due.after, due});
    }
    return true;
}

void Performer::perform(PinPad& pinPad, const Cue& cue) {
    switch (cue.deed) {
        case Deed::kPersonActs:
            return pinPad.act(cue.gestures);
        case Deed::kNothing:
            return;
        case Deed::kInterrupt:
            sale_.ledger.interrupted();
            return process_->signal(SIGINT);
        case Deed::kCut:
            sale_.ledger.cut();
            lineGoes_();
            return pinPad.hang_up(kAbsence);
    }
}

void Performer::act_as_usual(PinPad& pinPad, const std::string& command) {
    if (is_one_of(command, {"GCX", "GCR"})) { return act_next(pinPad, sale_.person.cards, cards_); }
    if (is_one_of(command, {"GOX", "GOC", "GPN"})) { return act_next(pinPad, sale_.person.entries, entries_); }
    if (command == "RMC") { pinPad.remove(); }
}

void Performer::work(PinPad& pinPad, Clock::time_point now) {
    const std::lock_guard lock(mutex_);
    while (!pending_.empty() && pending_.front().at <= now) {
        const Cue due = pending_.front().cue;
        pending_.pop_front();
        perform(pinPad, due);
    }
}

std::optional<Companion::Clock::time_point> Performer::due() const {
    const std::lock_guard lock(mutex_);
    return pending_.empty() ? std::nullopt : std::optional(pending_.front().at);
}

}  // namespace quorvel::sim::exam
