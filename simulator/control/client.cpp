// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/control/client.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <sys/socket.h>
#include <utility>

namespace quorvel::sim {

namespace {

constexpr size_t kLongestLine = 65536;
// Who does not read that much is not listened to either.
constexpr size_t kMostUnread = 65536;

}  // namespace

bool Client::wants_more() const noexcept {
    return !ended_ && !await_ && out_.size() < kMostUnread && in_.size() <= kLongestLine;
}

short Client::events() const noexcept {
    const int events = (wants_more() ? POLLIN : 0) | (out_.empty() ? 0 : POLLOUT);
    return static_cast<short>(events);
}

std::optional<std::chrono::steady_clock::time_point> Client::deadline() const {
    if (await_ && lost_) { return std::min(await_->deadline, *lost_); }
    return await_ ? std::optional(await_->deadline) : lost_;
}

bool Client::is_over() const noexcept { return gone_ || (ended_ && !await_ && in_.empty() && out_.empty()); }

void Client::read() {
    std::array<char, 4096> some{};
    const ssize_t count = ::recv(socket(), some.data(), some.size(), MSG_DONTWAIT);
    if (count > 0) { in_.append(some.data(), static_cast<size_t>(count)); }
    if (count == 0) { ended_ = true; }
    if (count < 0 && !is_transient(errno)) { gone_ = true; }
}

void Client::work() {
    while (out_.size() < kMostUnread && step()) {}
    write();
}

bool Client::step() {
    if (await_) {
        const auto due = control_.answer(*await_);
        if (!due) { return false; }
        await_.reset();
        answer(*due);
        return true;
    }
    const auto line = next_line();
    if (line && !line->empty()) { answer(control_.perform_line(*line)); }
    return line.has_value();
}

// The last line needs no end. None when there is no whole one.
std::optional<std::string> Client::next_line() {
    const size_t end = in_.find('\n');
    if (end == std::string::npos && in_.size() > kLongestLine) {
        in_.clear();
        if (!std::exchange(skipping_, true)) { answer(refusal(fmt::format("more than {} bytes", kLongestLine))); }
        return std::nullopt;
    }
    if (end == std::string::npos && (!ended_ || in_.empty())) { return std::nullopt; }
    std::string line = in_.substr(0, end);
    in_.erase(0, end == std::string::npos ? end : end + 1);
    if (std::exchange(skipping_, false)) { line.clear(); }
    if (!line.empty() && line.back() == '\r') { line.pop_back(); }
    return line;
}

void Client::answer(const Control::Outcome& outcome) {
    if (const auto* await = std::get_if<Control::Await>(&outcome)) {
        await_ = *await;
        return;
    }
    const auto& json = std::get<nlohmann::json>(outcome);
    // Whatever a request quotes of itself in an error may be no UTF-8.
    out_ += json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

void Client::write() {
    while (!out_.empty()) {
        const ssize_t count = ::send(socket(), out_.data(), out_.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        if (count < 0 && is_transient(errno)) {
            const auto now = std::chrono::steady_clock::now();
            if (!lost_) { lost_ = now + patience_; }
            if (now >= *lost_) { forsake(); }
            return;
        }
        lost_.reset();
        // Whoever went without waiting for answers may still have left requests.
        out_.erase(0, count < 0 ? std::string::npos : static_cast<size_t>(count));
    }
}

}  // namespace quorvel::sim
