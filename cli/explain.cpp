// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/explain.h"

#include <algorithm>
#include <array>

#include "wire/status.h"

namespace quorvel::cli {

namespace {

constexpr std::string_view kRetry = "Try again.";
constexpr std::string_view kChipCare =
    "Insert the card again, chip first, and leave it there; if that fails, try another.";
constexpr std::string_view kTapCare = "Hold the card still on the reader, or insert it.";
constexpr std::string_view kLoadTables = "Load tables that fit the card and the acquirer: quorvel tables load FILE";
constexpr std::string_view kLoadKey = "See which keys are there with `quorvel keys`, and name one that is.";

struct Row {
    wire::Status status;
    std::string_view meaning;
    std::string_view remedy = {};
};

constexpr std::array kStatuses{
    Row{wire::Status::kOk, "done"},
    Row{wire::Status::kNosec, "the command must not travel in clear", "Use an encrypted session: --secure"},
    Row{wire::Status::kF1, "the key F1 was pressed"},
    Row{wire::Status::kF2, "the key F2 was pressed"},
    Row{wire::Status::kF3, "the key F3 was pressed"},
    Row{wire::Status::kF4, "the key F4 was pressed"},
    Row{wire::Status::kBacksp, "the key CLEAR was pressed"},
    Row{wire::Status::kErrpktsec, "the PIN pad cannot decipher what it was sent", kRetry},
    Row{wire::Status::kInvcall, "the PIN pad does not take this command, or not now",
        "See with `quorvel info` what the PIN pad can do; it may be too old for this command."},
    Row{wire::Status::kInvparm, "the PIN pad does not take one of the values", "Check the options of the command."},
    Row{wire::Status::kTimeout, "nobody acted in time", "Be at the PIN pad, or wait longer with --timeout."},
    Row{wire::Status::kCancel, "the cardholder pressed CANCEL"},
    Row{wire::Status::kMandat, "a value that the PIN pad needs is missing", "Check the options of the command."},
    Row{wire::Status::kTabverdif, "the PIN pad has other tables than were expected", kLoadTables},
    Row{wire::Status::kTaberr, "the tables lack what is needed, or are refused",
        "Load tables that fit the card: quorvel tables load FILE; quorvel-tables(5) describes the file."},
    Row{wire::Status::kInterr, "the PIN pad has failed by itself", "Try again; if it stays, restart the PIN pad."},
    Row{wire::Status::kMcdataerr, "the stripe could not be read", "Swipe the card again, steadily."},
    Row{wire::Status::kErrkey, "there is no such key in the PIN pad", kLoadKey},
    Row{wire::Status::kNocard, "there is no card", "Insert the card and leave it there."},
    Row{wire::Status::kPinbusy, "a PIN was entered only just now", "Wait half a minute: PINs are only so often taken."},
    Row{wire::Status::kRspovrfl, "the answer is too long for the protocol", "Ask for less at once."},
    Row{wire::Status::kErrcrypt, "enciphering has failed in the PIN pad", kRetry},
    Row{wire::Status::kNosam, "there is no security module in that slot"},
    Row{wire::Status::kDumbcard, "the chip does not answer", kChipCare},
    Row{wire::Status::kErrcard, "speaking to the chip has failed", kChipCare},
    Row{wire::Status::kCardinvalidat, "the card is invalidated", "The card cannot be used; take another."},
    Row{wire::Status::kCardproblems, "the card's data contradict each other", "Take another card."},
    Row{wire::Status::kCardinvdata, "the card's data are not as they should be", "Take another card."},
    Row{wire::Status::kCardappnav, "the card has no application that the tables know", kLoadTables},
    Row{wire::Status::kCardappnaut, "the card's application may not be used here", "Take another card."},
    Row{wire::Status::kErrfallback, "the chip has failed and the stripe may be used", "Swipe the card."},
    Row{wire::Status::kInvamount, "the amount is not allowed", "Try another amount."},
    Row{wire::Status::kErrmaxaid, "the card has more applications than the PIN pad can hold", "Take another card."},
    Row{wire::Status::kCardblocked, "the card is blocked", "The card cannot be used; take another."},
    Row{wire::Status::kCtlsmultiple, "there is more than one card on the reader", "Hold out one card only."},
    Row{wire::Status::kCtlscommerr, "speaking to the contactless card has failed", kTapCare},
    Row{wire::Status::kCtlsinvalidat, "the contactless card is invalidated", "Take another card."},
    Row{wire::Status::kCtlsproblems, "the contactless card's data contradict each other", "Insert the card."},
    Row{wire::Status::kCtlsappnav, "the contactless card has no application that the tables know", kLoadTables},
    Row{wire::Status::kCtlsappnaut, "the contactless card's application may not be used here", "Insert the card."},
    Row{wire::Status::kCtlsextcvm, "the cardholder must confirm on the own device", "Look at the phone, tap again."},
    Row{wire::Status::kCtlsifchg, "the card wants to be inserted or swiped", "Insert or swipe the card."},
    Row{wire::Status::kMfnfound, "there is no such media file", "See the names with `quorvel media list`."},
    Row{wire::Status::kMferrfmt, "the PIN pad does not take media files of this format",
        "See with `quorvel info` which formats it takes."},
    Row{wire::Status::kMferr, "loading the media file has failed", kRetry},
};
static_assert(std::ranges::is_sorted(kStatuses, {}, &Row::status));

// What only the library says.
constexpr std::array kOwnStatuses{
    StatusMeaning{-2, "NOTIFICATION", "the PIN pad tells something meanwhile", ""},
    StatusMeaning{-1, "PROCESSING", "the PIN pad is still at it", ""},
};

constexpr std::string_view kWhichPort =
    "See what is there with `quorvel ports`, and check the port with `quorvel doctor`.";
constexpr std::string_view kIsItOn =
    "Check that the PIN pad is on, connected to this port and used by no other program: quorvel doctor";
constexpr std::string_view kReport = "This is a fault of quorvel: please report it.";

constexpr std::array kErrors{
    ErrorMeaning{ErrorCode::illegal_argument, Exit::kUsage, ""},
    ErrorMeaning{ErrorCode::index_out_of_bounds, Exit::kUsage, ""},
    ErrorMeaning{ErrorCode::io, Exit::kLink, kIsItOn},
    ErrorMeaning{ErrorCode::timeout, Exit::kLink, kIsItOn},
    ErrorMeaning{ErrorCode::not_found, Exit::kPort, kWhichPort},
    ErrorMeaning{ErrorCode::busy, Exit::kPort, "Another program uses the port; `quorvel doctor` tells which."},
    ErrorMeaning{ErrorCode::permission, Exit::kPort,
                 "You may not open the port; `quorvel doctor` tells what to do about it."},
    ErrorMeaning{ErrorCode::protocol, Exit::kLink, "See what was said with --trace."},
    ErrorMeaning{ErrorCode::crypt, Exit::kLink, "See what was said with --trace."},
};

}  // namespace

StatusMeaning explain_status(int32_t code) noexcept {
    const auto* found = std::ranges::lower_bound(kStatuses, static_cast<wire::Status>(code), {}, &Row::status);
    if (found != kStatuses.end() && static_cast<int32_t>(found->status) == code) {
        return {code, wire::status_name(code), found->meaning, found->remedy};
    }
    const auto* own = std::ranges::find(kOwnStatuses, code, &StatusMeaning::code);
    if (own != kOwnStatuses.end()) { return *own; }
    return {code, "UNKNOWN", "no status that the protocol has", ""};
}

ErrorMeaning explain_error(ErrorCode code) noexcept {
    const auto* found = std::ranges::find(kErrors, code, &ErrorMeaning::code);
    return found != kErrors.end() ? *found : ErrorMeaning{code, Exit::kInternal, kReport};
}

}  // namespace quorvel::cli
