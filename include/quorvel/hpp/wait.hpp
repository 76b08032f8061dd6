// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_WAIT_HPP
#define QUORVEL_HPP_WAIT_HPP

#include <exception>
#include <stop_token>

#include "quorvel/hpp/line.hpp"

/// @file
/// Commands that wait for the cardholder.

namespace quorvel {

namespace detail {

// What reads the answer to a request that waits.
template <typename Value>
struct Receiver {
    using value_type = Value;

    Receiver() = default;
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;
    virtual ~Receiver() = default;
    // The _response function. It makes nothing that has a destructor.
    virtual int32_t poll(AbecsComm* link, char* notification) = 0;
    [[nodiscard]] virtual bool is_good(int32_t status) const { return status == ABECS_RSP_STAT_ST_OK; }
    virtual Value value(int32_t status) = 0;
};

// How long one look at the line may take; a deadline and a cancellation end it before.
inline constexpr std::chrono::milliseconds kLook{2000};

}  // namespace detail

/// A command that waits for the cardholder, from when it was sent to its answer. One that ends without it, by its
/// destructor for instance, sends CAN, so that the PIN pad is idle. One is on at a time; it keeps the port open, and is
/// over when its session ends. One thread uses it, but for cancel().
template <typename Value>
class [[nodiscard]] Wait {
public:
    /// What deadlines are told by.
    using Clock = std::chrono::steady_clock;

    /// For Session::start: the command `id` has been sent.
    Wait(std::shared_ptr<detail::Line> line, std::string_view id, std::unique_ptr<detail::Receiver<Value>> receiver)
        : line_(std::move(line)), id_(id), receiver_(std::move(receiver)), turn_(line_->begin_wait()) {}
    /// The other one is over afterwards.
    Wait(Wait&& other) noexcept = default;
    Wait& operator=(Wait&&) = delete;
    /// Sends CAN if the answer has not come. What goes wrong then stays untold: the next command begins with CAN.
    ~Wait() {
        if (!is_waiting()) { return; }
        try {
            line_->send_can();
        } catch (...) {}  // the next command begins with CAN
    }

    /// Called, by get() and poll(), with each text that the PIN pad has for the cardholder meanwhile, in ISO 8859-1
    /// (to_utf8). It may throw, which get() throws on, the wait going on; it may call cancel(), and nothing else of the
    /// link.
    void on_notice(std::function<void(std::string_view)> notice) { notice_ = std::move(notice); }

    /// Waits for the answer, without an end. Throws Ended once it was cancelled, Error for what goes wrong.
    Answer<Value> get() { return wait(std::nullopt, {}); }
    /// The same with a deadline, at which CAN is sent and Ended thrown, whatever arrives meanwhile. CAN may take its
    /// time after that: up to 6.5 s where nobody answers, and then its error is what is thrown.
    template <typename Rep, typename Period>
    Answer<Value> get(std::chrono::duration<Rep, Period> within, std::stop_token stop = {}) {
        // What the clock cannot tell is without an end.
        constexpr std::chrono::duration<double> kLongest = std::chrono::hours(24 * 3650);
        if (std::chrono::duration<double>(within) > kLongest) { return wait(std::nullopt, stop); }
        return wait(Clock::now() + std::chrono::duration_cast<Clock::duration>(within), stop);
    }
    /// The same with a moment for the deadline.
    Answer<Value> get(Clock::time_point deadline, std::stop_token stop = {}) { return wait(deadline, stop); }
    /// Without a deadline, until a stop is asked for.
    Answer<Value> get(std::stop_token stop) { return wait(std::nullopt, stop); }

    /// For event loops: looks whether the answer has come, and tells of notices. Returns nothing when it has not.
    /// Throws as get() does.
    [[nodiscard]] std::optional<Answer<Value>> poll() { return look(std::chrono::milliseconds(0), std::nullopt); }

    /// Has the wait end: sends CAN in the next or present get() or poll(), which throws Ended. May be called from any
    /// thread and from a signal handler, as long as this object is there and not moved.
    void cancel() noexcept {
        if (line_ != nullptr) { line_->cancel(turn_); }
    }

    /// Whether the answer is still to come.
    [[nodiscard]] bool is_waiting() const noexcept {
        return line_ != nullptr && !over_ && !failed_ && line_->turn() == turn_ && line_->blocked();
    }

private:
    Answer<Value> wait(std::optional<Clock::time_point> deadline, const std::stop_token& stop) {
        const std::stop_callback wake(stop, [this]() noexcept { cancel(); });
        for (;;) {
            if (auto answer = look(detail::kLook, deadline)) { return std::move(*answer); }
            if (deadline && Clock::now() >= *deadline) { end(Ended::Why::deadline); }
        }
    }

    std::optional<Answer<Value>> look(std::chrono::milliseconds patience, std::optional<Clock::time_point> deadline) {
        for (;;) {
            require_waiting();
            if (line_->is_cancelled(turn_)) { end(Ended::Why::cancelled); }
            char text[33]{};
            const int32_t status = ask(patience, deadline, text);
            if (status == ABECS_RSP_STAT_ST_PROCESSING) {
                if (line_->is_cancelled(turn_)) { end(Ended::Why::cancelled); }
                return std::nullopt;
            }
            if (status != ABECS_RSP_STAT_ST_NOTIFICATION) { return finish(status); }
            if (notice_) { notice_(text); }
            if (deadline && Clock::now() >= *deadline) { return std::nullopt; }
        }
    }

    // With both times put back as they were. The limit makes the deadline hold against an answer that dribbles in.
    int32_t ask(std::chrono::milliseconds patience, std::optional<Clock::time_point> deadline, char* text) {
        using std::chrono::milliseconds;
        int32_t limit = 0;
        if (deadline) {
            const auto left = std::chrono::duration_cast<milliseconds>(*deadline - Clock::now()) + milliseconds(1);
            patience = std::clamp(left, milliseconds(0), patience);
            limit = static_cast<int32_t>(std::clamp(left, milliseconds(1), milliseconds(60'000)).count());
        }
        detail::Line& line = *line_;
        AbecsComm* const link = line.get();
        const int32_t ownLimit = abecs_comm_get_limit(link);
        const int32_t ownTime = abecs_comm_get_poll_time(link);
        const bool limited = limit != 0 && (ownLimit == 0 || limit < ownLimit);
        detail::Receiver<Value>& receiver = *receiver_;
        const auto restore = [&] {
            abecs_comm_set_poll_time(link, ownTime);
            if (limited) { abecs_comm_set_limit(link, ownLimit); }
        };
        const auto time = static_cast<int32_t>(patience.count());
        try {
            const int32_t status = line.call([&] {
                abecs_comm_set_poll_time(link, time);
                if (limited) { abecs_comm_set_limit(link, limit); }
                return receiver.poll(link, text);
            });
            line.call(restore);
            return status;
        } catch (Error& error) {
            put_back(restore);
            if (error.code() == ErrorCode::timeout) { return ABECS_RSP_STAT_ST_PROCESSING; }
            error.mark_sent();
            line.unsettle();
            failed_ = std::current_exception();
            throw;
        }
    }

    template <typename Restore>
    void put_back(Restore restore) noexcept {
        try {
            detail::call(restore);
        } catch (const Error&) {}
    }

    Answer<Value> finish(int32_t status) {
        over_ = true;
        if (!receiver_->is_good(status)) { return {id_, Status(status)}; }
        try {
            return {id_, Status(status), receiver_->value(status)};
        } catch (Error& error) {
            error.mark_sent();
            failed_ = std::current_exception();
            throw;
        }
    }

    [[noreturn]] void end(Ended::Why why) {
        Ended ended(why);
        ended.mark_sent();
        failed_ = std::make_exception_ptr(ended);
        line_->send_can();
        throw ended;
    }

    // What has ended it once ends it again: nobody is to believe that the command was not sent.
    void require_waiting() const {
        if (is_waiting()) { return; }
        if (failed_) { std::rethrow_exception(failed_); }
        Error over(ErrorCode::illegal_state, "[KOR_RESULT_ILLEGAL_STATE] the wait is over");
        over.mark_sent();
        throw over;
    }

    std::shared_ptr<detail::Line> line_;
    std::string id_;
    std::unique_ptr<detail::Receiver<Value>> receiver_;
    std::function<void(std::string_view)> notice_;
    std::exception_ptr failed_;
    uint64_t turn_ = 0;
    bool over_ = false;
};

}  // namespace quorvel

#endif
