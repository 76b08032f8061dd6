// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_REPEAT_HPP
#define QUORVEL_HPP_REPEAT_HPP

#include <initializer_list>

#include "quorvel/hpp/error.hpp"

/// @file
/// Whether a command may be sent again after it has failed. docs/cpp.md has the same as a table.

namespace quorvel {

/// What became of a command.
enum class Failure {
    not_sent,  ///< it was refused on this side: its arguments are wrong, or the link was not free
    refused,   ///< the PIN pad has answered with a status other than OK
    lost,      ///< it went out, or a part of it, and no answer came, or none that can be read; or the wait was ended
};

/// Which failure an error stands for; any doubt counts as lost.
[[nodiscard]] inline Failure failure_of(const Error& error) noexcept {
    if (error.code() != ErrorCode::refused && error.was_sent()) { return Failure::lost; }
    switch (error.code()) {
        case ErrorCode::refused:
            return Failure::refused;
        case ErrorCode::illegal_argument:
        case ErrorCode::illegal_state:
        case ErrorCode::index_out_of_bounds:
        case ErrorCode::not_found:
        case ErrorCode::busy:
        case ErrorCode::permission:
            return Failure::not_sent;
        default:
            return Failure::lost;
    }
}

/// What to do then.
struct Repeat {
    /// What can be done.
    enum class Advice {
        again,       ///< send it again
        from_start,  ///< not by itself: begin with `first` again
        never,       ///< nobody knows whether it was carried out, and a second time would be a second one
    };

    Advice advice;           ///< what to do
    std::string_view first;  ///< the command to begin with, of from_start
    std::string_view why;    ///< in words
};

/// Whether a command, by its id, may be sent again. `lost` is the hard case: the PIN pad may have carried it out.
[[nodiscard]] constexpr Repeat repeat_safety(std::string_view command, Failure failure) noexcept {
    using Advice = Repeat::Advice;
    const auto is_one_of = [&](std::initializer_list<std::string_view> ids) {
        for (const std::string_view id : ids) {
            if (id == command) { return true; }
        }
        return false;
    };
    if (failure == Failure::not_sent) { return {Advice::again, "", "nothing was sent"}; }
    const bool lost = failure == Failure::lost;
    if (is_one_of({"FCX", "FNC"})) {
        return lost ? Repeat{Advice::never, "", "the card may have decided: the outcome is unknown, reverse"}
                    : Repeat{Advice::never, "", "the card has not approved: it counts as declined, reverse"};
    }
    if (is_one_of({"GOX"})) {
        return {Advice::from_start, "GCX", "the card's transaction is begun anew with the card"};
    }
    if (is_one_of({"GOC"})) {
        return {Advice::from_start, "GCR", "the card's transaction is begun anew with the card"};
    }
    if (is_one_of({"TLR", "TLE"})) { return {Advice::from_start, "TLI", "a load is made from its start"}; }
    if (is_one_of({"MLR", "MLE"})) { return {Advice::from_start, "MLI", "a load is made from its start"}; }
    if (is_one_of({"CHP", "GEN"}) && lost) {
        return {Advice::never, "", "a chip may have carried out the command, a security module have counted it"};
    }
    if (is_one_of({"CLO", "CLX"})) { return {Advice::from_start, "OPN", "the session is over on this side"}; }
    if (is_one_of({"GCX", "GCR", "GPN", "GCD", "GKY", "MNU", "CKE", "CEX", "RMC"})) {
        return {Advice::again, "", "the cardholder is asked once more"};
    }
    if (is_one_of({"OPN", "GIN", "GIX", "GTS", "GDU", "GED", "GTK", "DSP", "DEX", "DSI",
                   "TLI", "MLI", "LMF", "DMF", "CNG", "DWK", "ENB", "EBX", "CHP", "GEN"})) {
        return {Advice::again, "", "a second time changes nothing"};
    }
    return {Advice::never, "", "it is no command that is known here"};
}

}  // namespace quorvel

#endif
