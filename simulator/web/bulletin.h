// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WEB_BULLETIN_H
#define QUORVEL_SIMULATOR_WEB_BULLETIN_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "simulator/pin_pad.h"

namespace quorvel::sim::web {

// What there is to tell to whoever looks on: lines, each of which comes once, and news, of which only the newest
// counts. Each reader takes at its own pace what it has not been told, and one that is too slow for the lines misses
// some; nobody waits for a reader. Safe from any thread.
class Bulletin {
public:
    enum class Values { kWithheld, kRevealed };

    // How many lines are kept, and about how many bytes of them.
    static constexpr size_t kMostLines = 10'000;
    static constexpr size_t kMostBytes = size_t{8} << 20U;

    explicit Bulletin(Values values) : values_(values) {}

    // Becomes a listener besides those that are there. It must outlive the PIN pad that is made from the options.
    void listen(PinPad::Options& options);

    void add(Traffic traffic);
    void add(Finding finding);
    // Data are in JSON. What is as it was is no news.
    void post(std::string_view name, std::string data);
    // Something has happened that may be news.
    void touch();
    // Wakes every reader, and tells that there is nothing more.
    void close();

    // Waits until something was touched since the last call, or so long. False when it is closed.
    [[nodiscard]] bool await_touch(std::chrono::milliseconds longest);

    // How far a reader is.
    struct Place {
        // The number of the last line that it has, which are counted from 1.
        uint64_t line = 0;
        uint64_t news = 0;
    };
    // Behind which there are at most so many lines.
    [[nodiscard]] uint64_t line_before_last(size_t most) const;
    // What is new since the place, as server-sent events, and moves the place. Waits for something so long; empty when
    // nothing has come.
    [[nodiscard]] std::string take(Place& place, std::chrono::milliseconds longest);
    [[nodiscard]] bool is_closed() const;

private:
    using Line = std::variant<Traffic, Finding>;
    struct News {
        uint64_t number;
        std::string data;
    };

    void keep(Line line, size_t size);
    [[nodiscard]] bool has_more(const Place& place) const;
    [[nodiscard]] std::string event_of(uint64_t number, const Line& line) const;

    const Values values_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::condition_variable touched_;
    std::deque<std::pair<Line, size_t>> lines_;
    size_t bytes_ = 0;
    // The number of the newest.
    uint64_t last_ = 0;
    uint64_t lastNews_ = 0;
    std::map<std::string, News, std::less<>> news_;
    bool isTouched_ = false;
    bool closed_ = false;
};

}  // namespace quorvel::sim::web

#endif
