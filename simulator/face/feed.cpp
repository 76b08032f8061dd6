// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/face/feed.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

#include "simulator/watch/listen.h"

namespace quorvel::sim {

namespace {

constexpr size_t kKeptEntries = 2000;
constexpr size_t kKeptFindings = 100;

template <typename Item>
void keep(std::deque<Item>& items, Item item, size_t most) {
    items.push_back(std::move(item));
    if (items.size() > most) { items.pop_front(); }
}

Feed::Entry entry_of(const Traffic& traffic) {
    return {traffic.sender == Sender::kHost ? Feed::Entry::Kind::kHost : Feed::Entry::Kind::kPinPad, traffic.words};
}

Feed::Entry entry_of(const Finding& finding) {
    return {Feed::Entry::Kind::kFinding, fmt::format("{}: {}", kind_name(finding.kind), finding.text)};
}

}  // namespace

void Feed::listen(PinPad::Options& options) {
    listen_too(options.listeners.traffic, [this](const Traffic& traffic) { add(entry_of(traffic)); });
    listen_too(options.listeners.finding, [this](const Finding& finding) { add(entry_of(finding)); });
    listen_too(options.returned, [this](const std::string& /*path*/) { wakeUp_.wake(); });
    listen_too(options.changed, [this] { wakeUp_.wake(); });
}

void Feed::add(Entry entry) {
    {
        const std::lock_guard lock(mutex_);
        if (entry.kind == Entry::Kind::kFinding) {
            keep(findings_, entry.text, kKeptFindings);
            ++findingCount_;
        }
        keep(entries_, std::move(entry), kKeptEntries);
        ++end_;
    }
    wakeUp_.wake();
}

uint64_t Feed::end() const {
    const std::lock_guard lock(mutex_);
    return end_;
}

std::vector<Feed::Entry> Feed::before(uint64_t end, size_t most) const {
    const std::lock_guard lock(mutex_);
    if (entries_.empty()) { return {}; }
    // Whoever asks for what is forgotten gets the oldest one that is not.
    const uint64_t newer = std::min<uint64_t>(end_ - std::min(end, end_), entries_.size() - 1);
    const auto last = entries_.end() - static_cast<std::ptrdiff_t>(newer);
    const auto there = static_cast<size_t>(last - entries_.begin());
    return {last - static_cast<std::ptrdiff_t>(std::min(most, there)), last};
}

std::vector<std::string> Feed::findings(size_t most) const {
    const std::lock_guard lock(mutex_);
    return {findings_.end() - static_cast<std::ptrdiff_t>(std::min(most, findings_.size())), findings_.end()};
}

size_t Feed::finding_count() const {
    const std::lock_guard lock(mutex_);
    return findingCount_;
}

}  // namespace quorvel::sim
