// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_LINE_HPP
#define QUORVEL_HPP_LINE_HPP

#include <atomic>
#include <functional>

#include "quorvel/additions.h"
#include "quorvel/hpp/answer.hpp"

/// @file
/// What a link does, for a log.

namespace quorvel {

/// What a link has done, for a log. The views live until the observer returns.
struct Event {
    /// What can happen.
    enum class Type : int32_t {
        sent = ABECS_LINK_EVENT_SENT,
        received = ABECS_LINK_EVENT_RECEIVED,
        rejected = ABECS_LINK_EVENT_REJECTED,
        damaged = ABECS_LINK_EVENT_DAMAGED,
        cancelled = ABECS_LINK_EVENT_CANCELLED,
        timeout = ABECS_LINK_EVENT_TIMEOUT,
    };

    Type type;                           ///< what has happened
    std::string_view command;            ///< the id of the command or answer, or ""
    std::optional<Status> status;        ///< of what was received
    bool encrypted;                      ///< whether the frame was enciphered
    size_t packet_size;                  ///< in clear, in bytes; or 0
    size_t frame_size;                   ///< on the line, in bytes; or 0
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
        detail::call([this] { abecs_comm_set_observer(link_, &Line::tell, this); });
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

    // Calls the library.
    template <typename Body>
    auto call(Body body) {
        require_open();
        return detail::call(body);
    }

    // The same for what speaks to the PIN pad. After an error in the middle of an exchange nobody knows what the PIN
    // pad is at: the next one begins with CAN.
    template <typename Body>
    auto exchange(Body body) {
        if (unsettled_) { settle(); }
        sent_ = false;
        try {
            return call(body);
        } catch (Error& error) {
            if (sent_) { error.mark_sent(); }
            if (sent_ || is_of_the_exchange(error.code())) { unsettled_ = true; }
            throw;
        }
    }
    void unsettle() noexcept { unsettled_ = true; }

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
        const bool shown = observer && packets == Packets::shown;
        call([&] { abecs_comm_show_clear_packets(link_, shown); });
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
    uint64_t session = 0;  // the number of the one that is open, or 0
    uint64_t sessions = 0;
    bool encrypted = false;
    // Whether the PIN pad may still be in an encrypted session that was cut off.
    bool doubtful = true;
    std::string lastText;
    std::string lastImage;
    // Which wait is to end: from any thread and from a signal handler. A late word on an earlier one changes nothing.
    void cancel(uint64_t turn) noexcept {
        uint64_t former = cancelled_;
        while (former < turn && !cancelled_.compare_exchange_weak(former, turn)) {}
        abecs_comm_wake(link_);
    }
    [[nodiscard]] bool is_cancelled(uint64_t turn) const noexcept { return cancelled_ == turn; }

private:
    static bool is_of_the_exchange(ErrorCode code) noexcept {
        return code == ErrorCode::io || code == ErrorCode::timeout || code == ErrorCode::protocol
               || code == ErrorCode::crypt || code == ErrorCode::out_of_memory;
    }

    // Called by C: nothing may be thrown through it, and no log may stop a sale.
    static void tell(const AbecsLinkEvent* event, void* context) noexcept {
        auto& line = *static_cast<Line*>(context);
        if (event->type == ABECS_LINK_EVENT_SENT) { line.sent_ = true; }
        if (!line.observer_) { return; }
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
        } catch (...) {}  // told of where Link::observe is
    }

    AbecsComm* link_ = nullptr;
    std::function<void(const Event&)> observer_;
    std::atomic<uint64_t> turn_{0};
    std::atomic<uint64_t> cancelled_{0};
    static_assert(std::atomic<uint64_t>::is_always_lock_free, "a signal handler sets it");
    bool unsettled_ = false;
    bool sent_ = false;
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
