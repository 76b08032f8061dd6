// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_STATUS_H
#define QUORVEL_WIRE_STATUS_H

#include <string_view>

namespace quorvel::wire {

// The status codes that responses carry, under the protocol's names.
enum class Status : int {
    ok = 0,
    nosec = 3,
    f1 = 4,
    f2 = 5,
    f3 = 6,
    f4 = 7,
    backsp = 8,
    errpktsec = 9,
    invcall = 10,
    invparm = 11,
    timeout = 12,
    cancel = 13,
    mandat = 19,
    tabverdif = 20,
    taberr = 21,
    interr = 40,
    mcdataerr = 41,
    errkey = 42,
    nocard = 43,
    pinbusy = 44,
    rspovrfl = 45,
    errcrypt = 46,
    nosam = 51,
    dumbcard = 60,
    errcard = 61,
    cardinvalidat = 67,
    cardproblems = 68,
    cardinvdata = 69,
    cardappnav = 70,
    cardappnaut = 71,
    errfallback = 76,
    invamount = 77,
    errmaxaid = 78,
    cardblocked = 79,
    ctlsmultiple = 80,
    ctlscommerr = 81,
    ctlsinvalidat = 82,
    ctlsproblems = 83,
    ctlsappnav = 84,
    ctlsappnaut = 85,
    ctlsextcvm = 86,
    ctlsifchg = 87,
    mfnfound = 100,
    mferrfmt = 101,
    mferr = 102,
};

// "INVCALL"; empty for a number that is no status.
[[nodiscard]] std::string_view status_name(int status) noexcept;

}  // namespace quorvel::wire

#endif
