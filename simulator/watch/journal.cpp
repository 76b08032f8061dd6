// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/watch/journal.h"

#include <utility>

namespace quorvel::sim {

namespace {

constexpr size_t kKept = 10000;

template <typename Entry>
void keep(std::deque<Entry>& entries, Entry entry) {
    entries.push_back(std::move(entry));
    if (entries.size() > kKept) { entries.pop_front(); }
}

}  // namespace

void Journal::record(Traffic traffic) {
    traffic.time = clock_();
    if (listeners_.traffic) { listeners_.traffic(traffic); }
    traffic.packet.reset();
    const std::lock_guard lock(mutex_);
    keep(traffic_, std::move(traffic));
}

void Journal::record(Finding finding) {
    finding.time = clock_();
    {
        const std::lock_guard lock(mutex_);
        finding.number = ++found_;
    }
    if (listeners_.finding) { listeners_.finding(finding); }
    const std::lock_guard lock(mutex_);
    keep(findings_, std::move(finding));
}

std::vector<Traffic> Journal::traffic() const {
    const std::lock_guard lock(mutex_);
    return {traffic_.begin(), traffic_.end()};
}

void Journal::clear_findings() {
    const std::lock_guard lock(mutex_);
    findings_.clear();
}

void Journal::restart_findings() {
    const std::lock_guard lock(mutex_);
    findings_.clear();
    found_ = 0;
}

std::vector<Finding> Journal::findings() const {
    const std::lock_guard lock(mutex_);
    return {findings_.begin(), findings_.end()};
}

}  // namespace quorvel::sim
