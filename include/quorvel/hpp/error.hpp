// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_ERROR_HPP
#define QUORVEL_HPP_ERROR_HPP

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string_view>
#include <type_traits>

#include "quorvel/quorvel.h"

/// @file
/// Errors and statuses.

namespace quorvel {

/// The kinds of errors: those of the library (quorvel/kor/result.h), by the same numbers, and two of the wrapper.
enum class ErrorCode : int16_t {
    runtime = KOR_RESULT_RUNTIME_ERROR,
    illegal_argument = KOR_RESULT_ILLEGAL_ARGUMENT,
    illegal_state = KOR_RESULT_ILLEGAL_STATE,
    index_out_of_bounds = KOR_RESULT_INDEX_OUT_OF_BOUNDS,
    out_of_memory = KOR_RESULT_MALLOC_ERROR,
    io = KOR_RESULT_IO_ERROR,
    timeout = KOR_RESULT_TIMEOUT_ERROR,
    not_found = KOR_RESULT_FILE_NOT_FOUND,
    encoding = KOR_RESULT_ENCODING_ERROR,
    busy = KOR_RESULT_DEVICE_BUSY,
    permission = KOR_RESULT_PERMISSION_DENIED,
    protocol = KOR_RESULT_PROTOCOL_ERROR,
    crypt = KOR_RESULT_CRYPT_ERROR,
    refused = 100,  ///< Refused: the PIN pad's status was not OK
    ended = 101,    ///< Ended: the caller ended the wait
};

/// What the library raises, and the base of what the wrapper throws. Copying it allocates nothing.
class Error : public std::exception {
public:
    /// Of what the library has raised.
    explicit Error(const KorException& raised) noexcept : record_(raised) {}
    /// The wrapper's own.
    Error(ErrorCode code, std::string_view text) noexcept {
        record_.error = static_cast<int16_t>(code);
        std::memcpy(record_.message, text.data(), std::min(text.size(), sizeof record_.message - 1));
    }

    /// Its kind.
    [[nodiscard]] ErrorCode code() const noexcept { return static_cast<ErrorCode>(record_.error); }
    /// The whole text, "[KOR_RESULT_IO_ERROR] read() error: 5" for instance; at most 255 characters.
    [[nodiscard]] std::string_view text() const noexcept { return record_.message; }
    /// The text without the name in brackets.
    [[nodiscard]] std::string_view detail() const noexcept {
        const std::string_view all = text();
        const size_t end = all.starts_with('[') ? all.find("] ") : std::string_view::npos;
        return end == std::string_view::npos ? all : all.substr(end + 2);
    }
    /// The same as text(), with a NUL.
    [[nodiscard]] const char* what() const noexcept override { return record_.message; }

    /// Whether the PIN pad had accepted a request when this was raised, and may have carried it out.
    [[nodiscard]] bool was_sent() const noexcept { return sent_; }
    /// For the wrapper: it had.
    void mark_sent() noexcept { sent_ = true; }

private:
    KorException record_{};
    bool sent_ = false;
};

namespace detail {

// Runs body(context) in a try block and throws once that is closed again. The locals have no destructors, and neither
// has anything in `body`, so that a raise jumps over nothing.
inline void run(void (*body)(void*) noexcept, void* context) {
    volatile bool ended = false;
    KorException raised{};
    KOR_TRY {
        body(context);
        ended = true;
    }
    KOR_CATCH(KOR_RESULT_OK) { kor_exception_get(&raised); }
    KOR_END_TRY;
    if (raised.error != KOR_RESULT_OK) { throw Error(raised); }
    if (!ended) { throw Error(ErrorCode::out_of_memory, "[KOR_RESULT_MALLOC_ERROR] no memory for a try block"); }
}

/// What `body` returns, which calls the library; throws Error for what it raises. A raise is a longjmp: nothing that
/// has a destructor may be made inside, and no exception may leave it. Capture by reference.
template <typename Body>
auto call(Body body) {
    using Result = std::invoke_result_t<Body&>;
    static_assert(std::is_trivially_destructible_v<Body>, "capture by reference");
    if constexpr (std::is_void_v<Result>) {
        run([](void* context) noexcept { (*static_cast<Body*>(context))(); }, &body);
    } else {
        static_assert(std::is_trivially_destructible_v<Result>, "return what a longjmp may pass over");
        struct Frame {
            Body& body;
            Result result;
        } frame{body, Result{}};
        run(
            [](void* context) noexcept {
                auto& inner = *static_cast<Frame*>(context);
                inner.result = inner.body();
            },
            &frame);
        return frame.result;
    }
}

// The wrapper's own errors read like the library's.
[[noreturn]] inline void refuse_argument(const char* what) {
    char text[sizeof(KorException::message)];
    std::snprintf(text, sizeof text, "[KOR_RESULT_ILLEGAL_ARGUMENT] %s", what);
    throw Error(ErrorCode::illegal_argument, text);
}

}  // namespace detail

/// The PIN pad's answer to a command, RSP_STAT: a value, no error. Made by the wrapper of the statuses that the
/// protocol knows.
class Status {
public:
    /// OK.
    constexpr Status() noexcept = default;
    /// By its number.
    constexpr explicit Status(int32_t code) noexcept : code_(code) {}

    /// The three digits that travel.
    [[nodiscard]] constexpr int32_t code() const noexcept { return code_; }
    /// Whether it is 0.
    [[nodiscard]] constexpr bool is_ok() const noexcept { return code_ == 0; }
    /// The protocol's name, "ST_TIMEOUT" for instance; "unknown" for a number that it does not know.
    [[nodiscard]] constexpr std::string_view name() const noexcept {
        switch (code_) {
            case ABECS_RSP_STAT_ST_OK:
                return "ST_OK";
            case ABECS_RSP_STAT_ST_NOSEC:
                return "ST_NOSEC";
            case ABECS_RSP_STAT_ST_F1:
                return "ST_F1";
            case ABECS_RSP_STAT_ST_F2:
                return "ST_F2";
            case ABECS_RSP_STAT_ST_F3:
                return "ST_F3";
            case ABECS_RSP_STAT_ST_F4:
                return "ST_F4";
            case ABECS_RSP_STAT_ST_BACKSP:
                return "ST_BACKSP";
            case ABECS_RSP_STAT_ST_ERRPKTSEC:
                return "ST_ERRPKTSEC";
            case ABECS_RSP_STAT_ST_INVCALL:
                return "ST_INVCALL";
            case ABECS_RSP_STAT_ST_INVPARM:
                return "ST_INVPARM";
            case ABECS_RSP_STAT_ST_TIMEOUT:
                return "ST_TIMEOUT";
            case ABECS_RSP_STAT_ST_CANCEL:
                return "ST_CANCEL";
            case ABECS_RSP_STAT_ST_MANDAT:
                return "ST_MANDAT";
            case ABECS_RSP_STAT_ST_TABVERDIF:
                return "ST_TABVERDIF";
            case ABECS_RSP_STAT_ST_TABERR:
                return "ST_TABERR";
            case ABECS_RSP_STAT_ST_INTERR:
                return "ST_INTERR";
            case ABECS_RSP_STAT_ST_MCDATAERR:
                return "ST_MCDATAERR";
            case ABECS_RSP_STAT_ST_ERRKEY:
                return "ST_ERRKEY";
            case ABECS_RSP_STAT_ST_NOCARD:
                return "ST_NOCARD";
            case ABECS_RSP_STAT_ST_PINBUSY:
                return "ST_PINBUSY";
            case ABECS_RSP_STAT_ST_RSPOVRFL:
                return "ST_RSPOVRFL";
            case ABECS_RSP_STAT_ST_ERRCRYPT:
                return "ST_ERRCRYPT";
            case ABECS_RSP_STAT_ST_NOSAM:
                return "ST_NOSAM";
            case ABECS_RSP_STAT_ST_DUMBCARD:
                return "ST_DUMBCARD";
            case ABECS_RSP_STAT_ST_ERRCARD:
                return "ST_ERRCARD";
            case ABECS_RSP_STAT_ST_CARDINVALIDAT:
                return "ST_CARDINVALIDAT";
            case ABECS_RSP_STAT_ST_CARDPROBLEMS:
                return "ST_CARDPROBLEMS";
            case ABECS_RSP_STAT_ST_CARDINVDATA:
                return "ST_CARDINVDATA";
            case ABECS_RSP_STAT_ST_CARDAPPNAV:
                return "ST_CARDAPPNAV";
            case ABECS_RSP_STAT_ST_CARDAPPNAUT:
                return "ST_CARDAPPNAUT";
            case ABECS_RSP_STAT_ST_ERRFALLBACK:
                return "ST_ERRFALLBACK";
            case ABECS_RSP_STAT_ST_INVAMOUNT:
                return "ST_INVAMOUNT";
            case ABECS_RSP_STAT_ST_ERRMAXAID:
                return "ST_ERRMAXAID";
            case ABECS_RSP_STAT_ST_CARDBLOCKED:
                return "ST_CARDBLOCKED";
            case ABECS_RSP_STAT_ST_CTLSMULTIPLE:
                return "ST_CTLSMULTIPLE";
            case ABECS_RSP_STAT_ST_CTLSCOMMERR:
                return "ST_CTLSCOMMERR";
            case ABECS_RSP_STAT_ST_CTLSINVALIDAT:
                return "ST_CTLSINVALIDAT";
            case ABECS_RSP_STAT_ST_CTLSPROBLEMS:
                return "ST_CTLSPROBLEMS";
            case ABECS_RSP_STAT_ST_CTLSAPPNAV:
                return "ST_CTLSAPPNAV";
            case ABECS_RSP_STAT_ST_CTLSAPPNAUT:
                return "ST_CTLSAPPNAUT";
            case ABECS_RSP_STAT_ST_CTLSEXTCVM:
                return "ST_CTLSEXTCVM";
            case ABECS_RSP_STAT_ST_CTLSIFCHG:
                return "ST_CTLSIFCHG";
            case ABECS_RSP_STAT_ST_MFNFOUND:
                return "ST_MFNFOUND";
            case ABECS_RSP_STAT_ST_MFERRFMT:
                return "ST_MFERRFMT";
            case ABECS_RSP_STAT_ST_MFERR:
                return "ST_MFERR";
            default:
                return "unknown";
        }
    }
    /// Whether both are the same.
    friend constexpr bool operator==(Status, Status) noexcept = default;

    static const Status ok, nosec, f1, f2, f3, f4, backspace, errpktsec, invalid_call, invalid_parameter, timeout,
        cancel, mandatory, tables_differ, tables_error, internal_error, stripe_error, key_missing, no_card, pin_busy,
        response_overflow, crypt_error, no_sam, dumb_card, card_error, card_invalidated, card_problems, card_bad_data,
        card_no_application, card_application_not_allowed, fallback_refused, invalid_amount, too_many_applications,
        card_blocked, ctls_multiple, ctls_error, ctls_invalidated, ctls_problems, ctls_no_application,
        ctls_application_not_allowed, ctls_external_verification, ctls_interface_change, media_not_found,
        media_bad_format, media_error;

private:
    int32_t code_ = 0;
};

inline constexpr Status Status::ok{ABECS_RSP_STAT_ST_OK};  ///< done; for keys, ENTER
inline constexpr Status Status::nosec{
    ABECS_RSP_STAT_ST_NOSEC};  ///< an enciphered command, but there is no encrypted session at that end
inline constexpr Status Status::f1{ABECS_RSP_STAT_ST_F1};             ///< F1 was pressed
inline constexpr Status Status::f2{ABECS_RSP_STAT_ST_F2};             ///< F2 was pressed
inline constexpr Status Status::f3{ABECS_RSP_STAT_ST_F3};             ///< F3 was pressed
inline constexpr Status Status::f4{ABECS_RSP_STAT_ST_F4};             ///< F4 was pressed
inline constexpr Status Status::backspace{ABECS_RSP_STAT_ST_BACKSP};  ///< CLEAR was pressed
inline constexpr Status Status::errpktsec{
    ABECS_RSP_STAT_ST_ERRPKTSEC};  ///< the command could not be deciphered, or came plain inside an encrypted session
inline constexpr Status Status::invalid_call{ABECS_RSP_STAT_ST_INVCALL};  ///< the command is unknown, or out of order
inline constexpr Status Status::invalid_parameter{ABECS_RSP_STAT_ST_INVPARM};  ///< a parameter is wrong
inline constexpr Status Status::timeout{ABECS_RSP_STAT_ST_TIMEOUT};   ///< the cardholder did nothing for too long
inline constexpr Status Status::cancel{ABECS_RSP_STAT_ST_CANCEL};     ///< the cardholder pressed CANCEL
inline constexpr Status Status::mandatory{ABECS_RSP_STAT_ST_MANDAT};  ///< a parameter is missing
inline constexpr Status Status::tables_differ{
    ABECS_RSP_STAT_ST_TABVERDIF};  ///< the PIN pad's tables have another version than you named
inline constexpr Status Status::tables_error{
    ABECS_RSP_STAT_ST_TABERR};  ///< the tables could not be stored, or a load is out of order
inline constexpr Status Status::internal_error{
    ABECS_RSP_STAT_ST_INTERR};  ///< the PIN pad failed inside; and what a function returns where a raise returns
inline constexpr Status Status::stripe_error{ABECS_RSP_STAT_ST_MCDATAERR};  ///< the stripe could not be read
inline constexpr Status Status::key_missing{
    ABECS_RSP_STAT_ST_ERRKEY};  ///< the PIN pad has no key of that kind at that index
inline constexpr Status Status::no_card{ABECS_RSP_STAT_ST_NOCARD};              ///< no card where one must be
inline constexpr Status Status::pin_busy{ABECS_RSP_STAT_ST_PINBUSY};            ///< too many PINs in too short a time
inline constexpr Status Status::response_overflow{ABECS_RSP_STAT_ST_RSPOVRFL};  ///< the answer would be too long
inline constexpr Status Status::crypt_error{ABECS_RSP_STAT_ST_ERRCRYPT};        ///< a cryptographic check failed
inline constexpr Status Status::no_sam{ABECS_RSP_STAT_ST_NOSAM};        ///< there is no security module in that slot
inline constexpr Status Status::dumb_card{ABECS_RSP_STAT_ST_DUMBCARD};  ///< the chip does not answer
inline constexpr Status Status::card_error{ABECS_RSP_STAT_ST_ERRCARD};  ///< talking to the chip failed
inline constexpr Status Status::card_invalidated{ABECS_RSP_STAT_ST_CARDINVALIDAT};  ///< the card has been invalidated
inline constexpr Status Status::card_problems{ABECS_RSP_STAT_ST_CARDPROBLEMS};  ///< the card does not work as it should
inline constexpr Status Status::card_bad_data{ABECS_RSP_STAT_ST_CARDINVDATA};   ///< the card holds wrong data
inline constexpr Status Status::card_no_application{
    ABECS_RSP_STAT_ST_CARDAPPNAV};  ///< no application that both sides know
inline constexpr Status Status::card_application_not_allowed{
    ABECS_RSP_STAT_ST_CARDAPPNAUT};  ///< the application may not be used for this sale
inline constexpr Status Status::fallback_refused{
    ABECS_RSP_STAT_ST_ERRFALLBACK};  ///< the chip failed in a way that allows the stripe
inline constexpr Status Status::invalid_amount{ABECS_RSP_STAT_ST_INVAMOUNT};  ///< the amount cannot be used
inline constexpr Status Status::too_many_applications{
    ABECS_RSP_STAT_ST_ERRMAXAID};  ///< more applications than the PIN pad can take in
inline constexpr Status Status::card_blocked{ABECS_RSP_STAT_ST_CARDBLOCKED};        ///< the card is blocked
inline constexpr Status Status::ctls_multiple{ABECS_RSP_STAT_ST_CTLSMULTIPLE};      ///< more than one card in the field
inline constexpr Status Status::ctls_error{ABECS_RSP_STAT_ST_CTLSCOMMERR};          ///< talking to the card failed
inline constexpr Status Status::ctls_invalidated{ABECS_RSP_STAT_ST_CTLSINVALIDAT};  ///< the card has been invalidated
inline constexpr Status Status::ctls_problems{ABECS_RSP_STAT_ST_CTLSPROBLEMS};  ///< the card does not work as it should
inline constexpr Status Status::ctls_no_application{
    ABECS_RSP_STAT_ST_CTLSAPPNAV};  ///< no application that both sides know
inline constexpr Status Status::ctls_application_not_allowed{
    ABECS_RSP_STAT_ST_CTLSAPPNAUT};  ///< the application may not be used for this sale
inline constexpr Status Status::ctls_external_verification{
    ABECS_RSP_STAT_ST_CTLSEXTCVM};  ///< the cardholder must confirm on the phone first
inline constexpr Status Status::ctls_interface_change{
    ABECS_RSP_STAT_ST_CTLSIFCHG};                                             ///< the card wants another interface
inline constexpr Status Status::media_not_found{ABECS_RSP_STAT_ST_MFNFOUND};  ///< no media file of that name
inline constexpr Status Status::media_bad_format{
    ABECS_RSP_STAT_ST_MFERRFMT};  ///< a kind of file that the PIN pad does not take
inline constexpr Status Status::media_error{
    ABECS_RSP_STAT_ST_MFERR};  ///< the load failed: out of order, too long, or damaged on the way

/// Thrown where a status other than OK has to be an error: by Link::open, and by asking an answer for a value that it
/// does not have.
class Refused : public Error {
public:
    /// For the wrapper: the status of a command.
    Refused(std::string_view command, Status status) noexcept
        : Error(text_of(command, status)), status_(status), size_(std::min(command.size(), sizeof command_)) {
        std::memcpy(command_, command.data(), size_);
    }

    /// What the PIN pad has answered.
    [[nodiscard]] Status status() const noexcept { return status_; }
    /// The id of the command, "GCX" for instance.
    [[nodiscard]] std::string_view command() const noexcept { return {command_, size_}; }

private:
    static Error text_of(std::string_view command, Status status) noexcept {
        char text[64];
        const std::string_view name = status.name();
        std::snprintf(text, sizeof text, "[REFUSED] %.*s answered %03d %.*s", static_cast<int>(command.size()),
                      command.data(), static_cast<int>(status.code()), static_cast<int>(name.size()), name.data());
        return Error(ErrorCode::refused, text);
    }

    Status status_;
    char command_[12]{};
    size_t size_;
};

/// A wait that its caller has ended. The PIN pad has been sent CAN and has confirmed it; the session goes on.
class Ended : public Error {
public:
    /// What has ended it.
    enum class Why { deadline, cancelled };

    /// For the wrapper.
    explicit Ended(Why why) noexcept
        : Error(ErrorCode::ended,
                why == Why::deadline ? "[ENDED] the deadline has passed" : "[ENDED] the wait was cancelled"),
          why_(why) {}

    /// What has ended it.
    [[nodiscard]] Why why() const noexcept { return why_; }

private:
    Why why_;
};

}  // namespace quorvel

#endif
