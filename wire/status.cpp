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

constexpr std::array kNames{
    Name{Status::kOk, "OK"},
    Name{Status::kNosec, "NOSEC"},
    Name{Status::kF1, "F1"},
    Name{Status::kF2, "F2"},
    Name{Status::kF3, "F3"},
    Name{Status::kF4, "F4"},
    Name{Status::kBacksp, "BACKSP"},
    Name{Status::kErrpktsec, "ERRPKTSEC"},
    Name{Status::kInvcall, "INVCALL"},
    Name{Status::kInvparm, "INVPARM"},
    Name{Status::kTimeout, "TIMEOUT"},
    Name{Status::kCancel, "CANCEL"},
    Name{Status::kMandat, "MANDAT"},
    Name{Status::kTabverdif, "TABVERDIF"},
    Name{Status::kTaberr, "TABERR"},
    Name{Status::kInterr, "INTERR"},
    Name{Status::kMcdataerr, "MCDATAERR"},
    Name{Status::kErrkey, "ERRKEY"},
    Name{Status::kNocard, "NOCARD"},
    Name{Status::kPinbusy, "PINBUSY"},
    Name{Status::kRspovrfl, "RSPOVRFL"},
    Name{Status::kErrcrypt, "ERRCRYPT"},
    Name{Status::kNosam, "NOSAM"},
    Name{Status::kDumbcard, "DUMBCARD"},
    Name{Status::kErrcard, "ERRCARD"},
    Name{Status::kCardinvalidat, "CARDINVALIDAT"},
    Name{Status::kCardproblems, "CARDPROBLEMS"},
    Name{Status::kCardinvdata, "CARDINVDATA"},
    Name{Status::kCardappnav, "CARDAPPNAV"},
    Name{Status::kCardappnaut, "CARDAPPNAUT"},
    Name{Status::kErrfallback, "ERRFALLBACK"},
    Name{Status::kInvamount, "INVAMOUNT"},
    Name{Status::kErrmaxaid, "ERRMAXAID"},
    Name{Status::kCardblocked, "CARDBLOCKED"},
    Name{Status::kCtlsmultiple, "CTLSMULTIPLE"},
    Name{Status::kCtlscommerr, "CTLSCOMMERR"},
    Name{Status::kCtlsinvalidat, "CTLSINVALIDAT"},
    Name{Status::kCtlsproblems, "CTLSPROBLEMS"},
    Name{Status::kCtlsappnav, "CTLSAPPNAV"},
    Name{Status::kCtlsappnaut, "CTLSAPPNAUT"},
    Name{Status::kCtlsextcvm, "CTLSEXTCVM"},
    Name{Status::kCtlsifchg, "CTLSIFCHG"},
    Name{Status::kMfnfound, "MFNFOUND"},
    Name{Status::kMferrfmt, "MFERRFMT"},
    Name{Status::kMferr, "MFERR"},
};
static_assert(std::ranges::is_sorted(kNames, {}, &Name::status));

}  // namespace

std::string_view status_name(int status) noexcept {
    const auto* found = std::ranges::find(kNames, static_cast<Status>(status), &Name::status);
    return found != kNames.end() ? found->name : std::string_view{};
}

}  // namespace quorvel::wire
