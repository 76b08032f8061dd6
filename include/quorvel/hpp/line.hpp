// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_LINE_HPP
#define QUORVEL_HPP_LINE_HPP

#include <atomic>
#include <exception>
#include <functional>

#include "quorvel/additions.h"
#include "quorvel/hpp/answer.hpp"

namespace quorvel {

/// What a link has done, for a log. The views live until the observer returns.
struct Event {
    enum class Type : int32_t {
        sent = ABECS_LINK_EVENT_SENT,
        received = ABECS_LINK_EVENT_RECEIVED,
        rejected = ABECS_LINK_EVENT_REJECTED,
        damaged = ABECS_LINK_EVENT_DAMAGED,
        cancelled = ABECS_LINK_EVENT_CANCELLED,
        timeout = ABECS_LINK_EVENT_TIMEOUT,
    };

    Type type;
    std::string_view command;      ///< the id of the command or answer, or ""
    std::optional<Status> status;  ///< of what was received
    bool encrypted;
    size_t packet_size;
    size_t frame_size;
    std::chrono::microseconds duration;  ///< since the last event or the beginning of the request
    std::optional<Bytes> packet;         ///< in clear, if it was asked for
};

/// Whether an observer is shown the packets in clear: card data, PIN blocks and keys included.
enum class Packets { withheld, shown };

namespace detail {

// An open link and what the wrapper keeps beside it. Links, sessions and waits share it, so that none of them outlives
// the port.
class Line {
public:
    Line(std::string_view port, bool claim) {
        const CText name(port);
        link_ = detail::call([&] { return claim ? abecs_comm_claim(name.get()) : abecs_comm_open(name.get()); });
    }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;
    // Whatever goes wrong in closing, the port is closed.
    ~Line() {
        try {
            close();
        } catch (const Error&) {}
    }

    void close() {
        detail::call([this] { abecs_comm_close(&link_); });
    }

    [[nodiscard]] AbecsComm* get() const noexcept { return link_; }

    // Calls the library, and throws what it raises or, behind that, what an observer has thrown meanwhile.
    template <typename Body>
    auto call(Body body) {
        require_open();
        thrown_ = nullptr;
        using Result = std::invoke_result_t<Body&>;
        if constexpr (std::is_void_v<Result>) {
            detail::call(body);
            rethrow();
        } else {
            const Result result = detail::call(body);
            rethrow();
            return result;
        }
    }

    // The same for what speaks to the PIN pad. After an error in the middle of an exchange nobody knows what the PIN
    // pad is at: the next one begins with CAN.
    template <typename Body>
    auto exchange(Body body) {
        if (unsettled_) { settle(); }
        try {
            return call(body);
        } catch (const Error& error) {
            if (is_of_the_exchange(error.code())) { unsettled_ = true; }
            throw;
        }
    }

    void send_can() {
        ++turn_;
        unsettled_ = true;
        call([this] { abecs_comm_send_can(link_); });
        unsettled_ = false;
    }
    // What the PIN pad is at, if anything, is ended.
    void settle() {
        if (unsettled_ || blocked()) { send_can(); }
    }
    [[nodiscard]] bool blocked() const noexcept {
        return link_ != nullptr && *abecs_comm_get_blk_wait_id(link_) != '\0';
    }

    void observe(std::function<void(const Event&)> observer, Packets packets) {
        const bool on = static_cast<bool>(observer);
        call([&] {
            abecs_comm_set_observer(link_, on ? &Line::tell : nullptr, this);
            abecs_comm_show_clear_packets(link_, on && packets == Packets::shown);
        });
        observer_ = std::move(observer);
    }

    // Which wait is on: a number that changes whenever one begins or is ended for another reason than its answer.
    uint64_t begin_wait() noexcept { return ++turn_; }
    [[nodiscard]] uint64_t turn() const noexcept { return turn_; }

    void require_open() const {
        if (link_ == nullptr) {
            throw Error(ErrorCode::illegal_state, "[KOR_RESULT_ILLEGAL_STATE] the link is closed");
        }
    }

    // Of the session.
    bool sessionOpen = false;
    bool encrypted = false;
    // Whether the PIN pad may still be in an encrypted session that was cut off.
    bool doubtful = true;
    std::string lastText;
    std::string lastImage;
    // Which wait is to end: from any thread and from a signal handler.
    void cancel(uint64_t turn) noexcept {
        cancelled_ = turn;
        abecs_comm_wake(link_);
    }
    [[nodiscard]] bool is_cancelled(uint64_t turn) const noexcept { return cancelled_ == turn; }

private:
    static bool is_of_the_exchange(ErrorCode code) noexcept {
        return code == ErrorCode::io || code == ErrorCode::timeout || code == ErrorCode::protocol
               || code == ErrorCode::crypt || code == ErrorCode::out_of_memory;
    }

    // Called by C: nothing may be thrown through it.
    static void tell(const AbecsLinkEvent* event, void* context) noexcept {
        auto& line = *static_cast<Line*>(context);
        try {
            const bool received = event->type == ABECS_LINK_EVENT_RECEIVED && event->status >= 0;
            line.observer_({.type = static_cast<Event::Type>(event->type),
                            .command = event->cmdId,
                            .status = received ? std::optional(Status(event->status)) : std::nullopt,
                            .encrypted = event->encrypted,
                            .packet_size = event->packetSize,
                            .frame_size = event->frameSize,
                            .duration = std::chrono::microseconds(event->duration),
                            .packet = event->packet == nullptr
                                          ? std::nullopt
                                          : std::optional(Bytes(event->packet, event->packetSize))});
        } catch (...) { line.thrown_ = std::current_exception(); }
    }

    void rethrow() {
        if (thrown_) { std::rethrow_exception(std::exchange(thrown_, nullptr)); }
    }

    AbecsComm* link_ = nullptr;
    std::function<void(const Event&)> observer_;
    std::exception_ptr thrown_;
    std::atomic<uint64_t> turn_{0};
    std::atomic<uint64_t> cancelled_{0};
    static_assert(std::atomic<uint64_t>::is_always_lock_free, "a signal handler sets it");
    bool unsettled_ = false;
};

// A handle of the C interface, ended by its function.
template <auto kDelete>
class Owned;
template <typename Handle, void (*kDelete)(Handle**)>
class Owned<kDelete> {
public:
    explicit Owned(Handle* handle) noexcept : handle_(handle) {}
    Owned(Owned&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Owned& operator=(Owned&&) = delete;
    ~Owned() { kDelete(&handle_); }
    [[nodiscard]] Handle* get() const noexcept { return handle_; }

private:
    Handle* handle_;
};

}  // namespace detail

}  // namespace quorvel

#endif
