// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/restrictions.h"

#include "simulator/cards/emv.h"

namespace quorvel::sim {

namespace {

// Of the first and the second byte of the usage control: at home, and abroad.
struct Use {
    size_t byte;
    uint8_t home;
    uint8_t abroad;
};
constexpr Use kCash{0, 0x80, 0x40};
constexpr Use kGoodsOrServices{0, 0x28, 0x14};
constexpr Use kCashback{1, 0x80, 0x40};

// Years from 50 on are of the century before.
uint64_t day(const Bytes& date) {
    static constexpr uint64_t kCenturyBegins = 500000;
    static constexpr uint64_t kCentury = 1000000;
    const uint64_t digits = from_bcd(date);
    return digits < kCenturyBegins ? digits + kCentury : digits;
}

bool allows(const Bytes& control, const Use& use, bool home) {
    return use.byte >= control.size() || (control[use.byte] & (home ? use.home : use.abroad)) != 0;
}

bool may_be_used(const DataObjects& objects) {
    static constexpr uint64_t kCashType = 0x01;
    static constexpr uint64_t kCashbackType = 0x09;
    const Bytes control = value_of(objects, card_tag::kUsageControl);
    const bool home = value_of(objects, card_tag::kIssuerCountry) == value_of(objects, card_tag::kTerminalCountry);
    const uint64_t type = number(value_of(objects, tag::kType));
    if (type == kCashType) { return allows(control, kCash, home); }
    if (type == kCashbackType && !allows(control, kCashback, home)) { return false; }
    return allows(control, kGoodsOrServices, home);
}

}  // namespace

void mark_restrictions(DataObjects& objects) {
    const Bytes today = value_of(objects, tag::kDate);
    const Bytes expiry = value_of(objects, card_tag::kExpiry);
    const Bytes effective = value_of(objects, card_tag::kEffective);
    if (!today.empty() && !expiry.empty() && day(today) > day(expiry)) { set(objects, terminal_result::kExpired); }
    if (!today.empty() && !effective.empty() && day(today) < day(effective)) {
        set(objects, terminal_result::kNotYetEffective);
    }
    if (!may_be_used(objects)) { set(objects, terminal_result::kServiceNotAllowed); }
}

void mark_velocity(uint16_t counter, uint16_t lastOnline, DataObjects& objects) {
    const Bytes lower = value_of(objects, card_tag::kLowerOfflineLimit);
    const Bytes upper = value_of(objects, card_tag::kUpperOfflineLimit);
    if (lower.empty() || upper.empty()) { return; }
    const auto offline = static_cast<uint64_t>(counter - lastOnline);
    if (offline > number(lower)) { set(objects, terminal_result::kLowerLimitExceeded); }
    if (offline > number(upper)) { set(objects, terminal_result::kUpperLimitExceeded); }
    if (lastOnline == 0) { set(objects, terminal_result::kNewCard); }
}

}  // namespace quorvel::sim
