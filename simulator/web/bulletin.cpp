// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/web/bulletin.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "simulator/control/utf8.h"
#include "simulator/control/verbs.h"
#include "simulator/watch/listen.h"
#include "simulator/web/json_text.h"
#include "wire/words.h"

namespace quorvel::sim::web {

using nlohmann::json;

namespace {

// So that one who was away, or is slow, gets them piece by piece.
constexpr size_t kMostAtOnce = 200;

json revealed(const Traffic& traffic) {
    json line = to_json(traffic);
    line["bytes"] = fmt::format("{:02X}", fmt::join(traffic.wire, " "));
    if (!traffic.packet) { return line; }
    const std::string words = wire::whole_words_for(traffic.sender, *traffic.packet);
    const std::string struck = traffic.fault.empty() ? "" : fmt::format(" (fault: {})", traffic.fault);
    line["words"] = utf8((traffic.sealed ? enciphered_words(words) : words) + struck);
    return line;
}

}  // namespace

void Bulletin::listen(PinPad::Options& options) {
    listen_too(options.listeners.traffic, [this](const Traffic& traffic) { add(traffic); });
    listen_too(options.listeners.finding, [this](const Finding& finding) { add(finding); });
    listen_too(options.returned, [this](const std::string& /*path*/) { touch(); });
    listen_too(options.changed, [this] { touch(); });
}

void Bulletin::add(Traffic traffic) {
    if (values_ == Values::kWithheld) { traffic.packet.reset(); }
    const size_t size = traffic.wire.size() + traffic.words.size() + (traffic.packet ? traffic.packet->size() : 0);
    keep(std::move(traffic), size);
}

void Bulletin::add(Finding finding) {
    const size_t size = finding.text.size();
    keep(std::move(finding), size);
}

void Bulletin::keep(Line line, size_t size) {
    const size_t whole = size + sizeof(Line);
    {
        const std::lock_guard lock(mutex_);
        lines_.emplace_back(std::move(line), whole);
        bytes_ += whole;
        ++last_;
        while (lines_.size() > kMostLines || (bytes_ > kMostBytes && lines_.size() > 1)) {
            bytes_ -= lines_.front().second;
            lines_.pop_front();
        }
        isTouched_ = true;
    }
    changed_.notify_all();
    touched_.notify_one();
}

void Bulletin::post(std::string_view name, std::string data) {
    {
        const std::lock_guard lock(mutex_);
        const auto found = news_.find(name);
        if (found != news_.end() && found->second.data == data) { return; }
        news_.insert_or_assign(std::string(name), News{++lastNews_, std::move(data)});
    }
    changed_.notify_all();
}

void Bulletin::touch() {
    {
        const std::lock_guard lock(mutex_);
        isTouched_ = true;
    }
    touched_.notify_one();
}

void Bulletin::close() {
    {
        const std::lock_guard lock(mutex_);
        closed_ = true;
    }
    changed_.notify_all();
    touched_.notify_all();
}

bool Bulletin::await_touch(std::chrono::milliseconds longest) {
    std::unique_lock lock(mutex_);
    touched_.wait_for(lock, longest, [this] { return isTouched_ || closed_; });
    isTouched_ = false;
    return !closed_;
}

uint64_t Bulletin::line_before_last(size_t most) const {
    const std::lock_guard lock(mutex_);
    return last_ - std::min(most, lines_.size());
}

bool Bulletin::is_closed() const {
    const std::lock_guard lock(mutex_);
    return closed_;
}

bool Bulletin::has_more(const Place& place) const { return place.line < last_ || place.news < lastNews_; }

std::string Bulletin::take(Place& place, std::chrono::milliseconds longest) {
    std::vector<Line> lines;
    std::string text;
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, longest, [&] { return closed_ || has_more(place); });
    for (const auto& [name, each] : news_) {
        if (each.number > place.news) { text += server_sent_event(name, each.data); }
    }
    place.news = lastNews_;
    // One that has seen more than there is has seen another run's.
    place.line = std::min(place.line, last_);
    const uint64_t first = last_ - lines_.size();
    if (place.line < first) {
        text += server_sent_event("missed", fmt::format("{{\"count\":{}}}", first - place.line));
        place.line = first;
    }
    const auto begin = lines_.begin() + static_cast<std::ptrdiff_t>(place.line - first);
    const size_t count = std::min(static_cast<size_t>(lines_.end() - begin), kMostAtOnce);
    for (size_t i = 0; i < count; ++i) { lines.push_back(begin[static_cast<std::ptrdiff_t>(i)].first); }
    lock.unlock();
    for (const Line& line : lines) { text += event_of(++place.line, line); }
    return text;
}

std::string Bulletin::event_of(uint64_t number, const Line& line) const {
    json data;
    if (const auto* traffic = std::get_if<Traffic>(&line)) {
        data = values_ == Values::kRevealed ? revealed(*traffic) : to_json(*traffic);
        if (!traffic->fault.empty()) { data["fault"] = traffic->fault; }
    } else {
        data = to_json(std::get<Finding>(line));
        data["words"] = data["text"];
        data.erase("text");
        data["from"] = "finding";
    }
    data["number"] = number;
    return fmt::format("id: {}\n{}", number, server_sent_event("line", text_of(data)));
}

}  // namespace quorvel::sim::web
