// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_STATUS_H
#define QUORVEL_WIRE_STATUS_H

#include <string_view>

namespace quorvel::wire {

// The status codes that responses carry, under the protocol's names.
enum class Status : int {
    kOk = 0,
    kNosec = 3,
    kF1 = 4,
    kF2 = 5,
    kF3 = 6,
    kF4 = 7,
    kBacksp = 8,
    kErrpktsec = 9,
    kInvcall = 10,
    kInvparm = 11,
    kTimeout = 12,
    kCancel = 13,
    kMandat = 19,
    kTabverdif = 20,
    kTaberr = 21,
    kInterr = 40,
    kMcdataerr = 41,
    kErrkey = 42,
    kNocard = 43,
    kPinbusy = 44,
    kRspovrfl = 45,
    kErrcrypt = 46,
    kNosam = 51,
    kDumbcard = 60,
    kErrcard = 61,
    kCardinvalidat = 67,
    kCardproblems = 68,
    kCardinvdata = 69,
    kCardappnav = 70,
    kCardappnaut = 71,
    kErrfallback = 76,
    kInvamount = 77,
    kErrmaxaid = 78,
    kCardblocked = 79,
    kCtlsmultiple = 80,
    kCtlscommerr = 81,
    kCtlsinvalidat = 82,
    kCtlsproblems = 83,
    kCtlsappnav = 84,
    kCtlsappnaut = 85,
    kCtlsextcvm = 86,
    kCtlsifchg = 87,
    kMfnfound = 100,
    kMferrfmt = 101,
    kMferr = 102,
};

// "INVCALL"; empty for a number that is no status.
[[nodiscard]] std::string_view status_name(int status) noexcept;

}  // namespace quorvel::wire

#endif
