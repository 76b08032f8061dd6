// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/faults/fault_plan.h"

#include <algorithm>
#include <iterator>

namespace quorvel::sim {

namespace {

// The same, but for this occasion alone.
Fault this_once(Fault fault, const Message& message) {
    fault.command = message.command;
    fault.every = 1;
    fault.chance = 1;
    fault.times = 1;
    return fault;
}

}  // namespace

void FaultPlan::add(const Fault& fault) {
    check(fault);
    const std::lock_guard lock(mutex_);
    entries_.push_back(Entry{fault, find_fault_kind(fault.kind)});
}

void FaultPlan::withdraw(const Fault& fault) {
    const std::lock_guard lock(mutex_);
    std::erase_if(entries_, [&](const Entry& entry) {
        return entry.fault.kind == fault.kind && entry.fault.command == fault.command;
    });
}

void FaultPlan::clear() {
    const std::lock_guard lock(mutex_);
    entries_.clear();
}

void FaultPlan::restart() {
    const std::lock_guard lock(mutex_);
    entries_.clear();
    random_.seed(seed_);
}

std::vector<Fault> FaultPlan::faults() const {
    const std::lock_guard lock(mutex_);
    std::vector<Fault> faults;
    std::ranges::transform(entries_, std::back_inserter(faults), &Entry::fault);
    return faults;
}

std::optional<Fault> FaultPlan::strike(const Message& message) {
    auto fault = next(message);
    if (fault && struck_) { struck_(this_once(*fault, message)); }
    return fault;
}

std::optional<Fault> FaultPlan::next(const Message& message) {
    const std::lock_guard lock(mutex_);
    for (Entry& entry : entries_) {
        if (!strikes(entry, message)) { continue; }
        Fault struck = entry.fault;
        auto& times = entry.fault.times;
        if (times && --*times == 0) {
            std::erase_if(entries_, [](const Entry& other) { return other.fault.times == 0U; });
        }
        return struck;
    }
    return std::nullopt;
}

bool FaultPlan::strikes(Entry& entry, const Message& message) {
    const Fault& fault = entry.fault;
    if (!fault.command.empty() && fault.command != message.command) { return false; }
    if (!concerns(fault, *entry.kind, message)) { return false; }
    if (++entry.occasions % fault.every != 0) { return false; }
    // Not std::bernoulli_distribution, which draws otherwise in each library: a seed means the same everywhere.
    return fault.chance >= 1 || static_cast<double>(random_()) < fault.chance * 0x1p32;
}

}  // namespace quorvel::sim
