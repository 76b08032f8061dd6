// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/explain.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <string>

#include "quorvel/quorvel.h"

namespace quorvel::cli {

namespace {

constexpr std::string_view retry = "Try again.";
constexpr std::string_view chipCare =
    "Insert the card again, chip first, and leave it there; if that fails, try another.";
constexpr std::string_view tapCare = "Hold the card still on the reader, or insert it.";
constexpr std::string_view loadTables = "Load tables that fit the card and the acquirer: quorvel tables load FILE";
constexpr std::string_view loadKey = "See which keys are there with `quorvel keys`, and name one that is.";

constexpr std::array statuses{
    StatusMeaning{-2, "NOTIFICATION", "the PIN pad tells something meanwhile", ""},
    StatusMeaning{-1, "PROCESSING", "the PIN pad is still at it", ""},
    StatusMeaning{0, "OK", "done", ""},
    StatusMeaning{3, "NOSEC", "the command must not travel in clear", "Use an encrypted session: --secure"},
    StatusMeaning{4, "F1", "the key F1 was pressed", ""},
    StatusMeaning{5, "F2", "the key F2 was pressed", ""},
    StatusMeaning{6, "F3", "the key F3 was pressed", ""},
    StatusMeaning{7, "F4", "the key F4 was pressed", ""},
    StatusMeaning{8, "BACKSP", "the key CLEAR was pressed", ""},
    StatusMeaning{9, "ERRPKTSEC", "the PIN pad cannot decipher what it was sent", retry},
    StatusMeaning{10, "INVCALL", "the PIN pad does not take this command, or not now",
                  "See with `quorvel info` what the PIN pad can do; it may be too old for this command."},
    StatusMeaning{11, "INVPARM", "the PIN pad does not take one of the values", "Check the options of the command."},
    StatusMeaning{12, "TIMEOUT", "nobody acted in time", "Be at the PIN pad, or wait longer with --timeout."},
    StatusMeaning{13, "CANCEL", "the cardholder pressed CANCEL", ""},
    StatusMeaning{19, "MANDAT", "a value that the PIN pad needs is missing", "Check the options of the command."},
    StatusMeaning{20, "TABVERDIF", "the PIN pad has other tables than were expected", loadTables},
    StatusMeaning{21, "TABERR", "the tables lack what is needed, or are refused",
                  "Load tables that fit the card: quorvel tables load FILE; quorvel-tables(5) describes the file."},
    StatusMeaning{40, "INTERR", "the PIN pad has failed by itself", "Try again; if it stays, restart the PIN pad."},
    StatusMeaning{41, "MCDATAERR", "the stripe could not be read", "Swipe the card again, steadily."},
    StatusMeaning{42, "ERRKEY", "there is no such key in the PIN pad", loadKey},
    StatusMeaning{43, "NOCARD", "there is no card", "Insert the card and leave it there."},
    StatusMeaning{44, "PINBUSY", "a PIN was entered only just now",
                  "Wait half a minute: PINs are only so often taken."},
    StatusMeaning{45, "RSPOVRFL", "the answer is too long for the protocol", "Ask for less at once."},
    StatusMeaning{46, "ERRCRYPT", "enciphering has failed in the PIN pad", retry},
    StatusMeaning{51, "NOSAM", "there is no security module in that slot", ""},
    StatusMeaning{60, "DUMBCARD", "the chip does not answer", chipCare},
    StatusMeaning{61, "ERRCARD", "speaking to the chip has failed", chipCare},
    StatusMeaning{67, "CARDINVALIDAT", "the card is invalidated", "The card cannot be used; take another."},
    StatusMeaning{68, "CARDPROBLEMS", "the card's data contradict each other", "Take another card."},
    StatusMeaning{69, "CARDINVDATA", "the card's data are not as they should be", "Take another card."},
    StatusMeaning{70, "CARDAPPNAV", "the card has no application that the tables know", loadTables},
    StatusMeaning{71, "CARDAPPNAUT", "the card's application may not be used here", "Take another card."},
    StatusMeaning{76, "ERRFALLBACK", "the chip has failed and the stripe may be used", "Swipe the card."},
    StatusMeaning{77, "INVAMOUNT", "the amount is not allowed", "Try another amount."},
    StatusMeaning{78, "ERRMAXAID", "the card has more applications than the PIN pad can hold", "Take another card."},
    StatusMeaning{79, "CARDBLOCKED", "the card is blocked", "The card cannot be used; take another."},
    StatusMeaning{80, "CTLSMULTIPLE", "there is more than one card on the reader", "Hold out one card only."},
    StatusMeaning{81, "CTLSCOMMERR", "speaking to the contactless card has failed", tapCare},
    StatusMeaning{82, "CTLSINVALIDAT", "the contactless card is invalidated", "Take another card."},
    StatusMeaning{83, "CTLSPROBLEMS", "the contactless card's data contradict each other", "Insert the card."},
    StatusMeaning{84, "CTLSAPPNAV", "the contactless card has no application that the tables know", loadTables},
    StatusMeaning{85, "CTLSAPPNAUT", "the contactless card's application may not be used here", "Insert the card."},
    StatusMeaning{86, "CTLSEXTCVM", "the cardholder must confirm on the own device", "Look at the phone, tap again."},
    StatusMeaning{87, "CTLSIFCHG", "the card wants to be inserted or swiped", "Insert or swipe the card."},
    StatusMeaning{100, "MFNFOUND", "there is no such media file", "See the names with `quorvel media list`."},
    StatusMeaning{101, "MFERRFMT", "the PIN pad does not take media files of this format",
                  "See with `quorvel info` which formats it takes."},
    StatusMeaning{102, "MFERR", "loading the media file has failed", retry},
};
static_assert(std::ranges::is_sorted(statuses, {}, &StatusMeaning::code));

constexpr std::string_view whichPort =
    "See what is there with `quorvel ports`, and check the port with `quorvel doctor`.";
constexpr std::string_view isItOn =
    "Check that the PIN pad is on, connected to this port and used by no other program: quorvel doctor";
constexpr std::string_view report = "This is a fault of quorvel: please report it.";

constexpr std::array errors{
    ErrorMeaning{KOR_RESULT_ILLEGAL_ARGUMENT, Exit::usage, ""},
    ErrorMeaning{KOR_RESULT_INDEX_OUT_OF_BOUNDS, Exit::usage, ""},
    ErrorMeaning{KOR_RESULT_IO_ERROR, Exit::link, isItOn},
    ErrorMeaning{KOR_RESULT_TIMEOUT_ERROR, Exit::link, isItOn},
    ErrorMeaning{KOR_RESULT_FILE_NOT_FOUND, Exit::port, whichPort},
    ErrorMeaning{KOR_RESULT_DEVICE_BUSY, Exit::port, "Another program uses the port; `quorvel doctor` tells which."},
    ErrorMeaning{KOR_RESULT_PERMISSION_DENIED, Exit::port,
                 "You may not open the port; `quorvel doctor` tells what to do about it."},
    ErrorMeaning{KOR_RESULT_PROTOCOL_ERROR, Exit::link, "See what was said with --trace."},
    ErrorMeaning{KOR_RESULT_CRYPT_ERROR, Exit::link, "See what was said with --trace."},
};

std::string status_text(std::string_view command, int32_t status) {
    const StatusMeaning meaning = explain_status(status);
    return fmt::format("{} answered {:03} {}: {}.", command, status, meaning.name, meaning.meaning);
}

// "[KOR_RESULT_IO_ERROR] read() error: 5" without what stands in brackets.
std::string detail_of(std::string_view message) {
    const size_t end = message.starts_with('[') ? message.find("] ") : std::string_view::npos;
    return std::string(end == std::string_view::npos ? message : message.substr(end + 2));
}

}  // namespace

StatusMeaning explain_status(int32_t code) noexcept {
    const auto* found = std::ranges::lower_bound(statuses, code, {}, &StatusMeaning::code);
    if (found != statuses.end() && found->code == code) return *found;
    return {code, "UNKNOWN", "no status that the protocol has", ""};
}

ErrorMeaning explain_error(int16_t code) noexcept {
    const auto* found = std::ranges::find(errors, code, &ErrorMeaning::code);
    return found != errors.end() ? *found : ErrorMeaning{code, Exit::internal, report};
}

LibraryError::LibraryError(int16_t code, std::string_view message)
    : Error(explain_error(code).exit, detail_of(message), std::string(explain_error(code).remedy)), code_(code) {}

StatusError::StatusError(std::string_view command, int32_t status)
    : Error(Exit::refused, status_text(command, status), std::string(explain_status(status).remedy)), status_(status) {}

}  // namespace quorvel::cli
