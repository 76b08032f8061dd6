// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/status.h"

#include <algorithm>
#include <array>

namespace quorvel::wire {

namespace {

struct Name {
    Status status;
    std::string_view name;
};

constexpr std::array names{
    Name{Status::ok, "OK"},
    Name{Status::nosec, "NOSEC"},
    Name{Status::f1, "F1"},
    Name{Status::f2, "F2"},
    Name{Status::f3, "F3"},
    Name{Status::f4, "F4"},
    Name{Status::backsp, "BACKSP"},
    Name{Status::errpktsec, "ERRPKTSEC"},
    Name{Status::invcall, "INVCALL"},
    Name{Status::invparm, "INVPARM"},
    Name{Status::timeout, "TIMEOUT"},
    Name{Status::cancel, "CANCEL"},
    Name{Status::mandat, "MANDAT"},
    Name{Status::tabverdif, "TABVERDIF"},
    Name{Status::taberr, "TABERR"},
    Name{Status::interr, "INTERR"},
    Name{Status::mcdataerr, "MCDATAERR"},
    Name{Status::errkey, "ERRKEY"},
    Name{Status::nocard, "NOCARD"},
    Name{Status::pinbusy, "PINBUSY"},
    Name{Status::rspovrfl, "RSPOVRFL"},
    Name{Status::errcrypt, "ERRCRYPT"},
    Name{Status::nosam, "NOSAM"},
    Name{Status::dumbcard, "DUMBCARD"},
    Name{Status::errcard, "ERRCARD"},
    Name{Status::cardinvalidat, "CARDINVALIDAT"},
    Name{Status::cardproblems, "CARDPROBLEMS"},
    Name{Status::cardinvdata, "CARDINVDATA"},
    Name{Status::cardappnav, "CARDAPPNAV"},
    Name{Status::cardappnaut, "CARDAPPNAUT"},
    Name{Status::errfallback, "ERRFALLBACK"},
    Name{Status::invamount, "INVAMOUNT"},
    Name{Status::errmaxaid, "ERRMAXAID"},
    Name{Status::cardblocked, "CARDBLOCKED"},
    Name{Status::ctlsmultiple, "CTLSMULTIPLE"},
    Name{Status::ctlscommerr, "CTLSCOMMERR"},
    Name{Status::ctlsinvalidat, "CTLSINVALIDAT"},
    Name{Status::ctlsproblems, "CTLSPROBLEMS"},
    Name{Status::ctlsappnav, "CTLSAPPNAV"},
    Name{Status::ctlsappnaut, "CTLSAPPNAUT"},
    Name{Status::ctlsextcvm, "CTLSEXTCVM"},
    Name{Status::ctlsifchg, "CTLSIFCHG"},
    Name{Status::mfnfound, "MFNFOUND"},
    Name{Status::mferrfmt, "MFERRFMT"},
    Name{Status::mferr, "MFERR"},
};
static_assert(std::ranges::is_sorted(names, {}, &Name::status));

}  // namespace

std::string_view status_name(int status) noexcept {
    const auto* found = std::ranges::find(names, static_cast<Status>(status), &Name::status);
    return found != names.end() ? found->name : std::string_view{};
}

}  // namespace quorvel::wire
