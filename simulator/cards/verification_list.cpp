// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/verification_list.h"

#include "simulator/cards/emv.h"
#include "wire/hex.h"

namespace quorvel::sim {

namespace {

using Method = VerificationRule::Method;

// In the second byte of the capabilities.
constexpr uint8_t kPlainPin = 0x80, kOnlinePin = 0x40, kSignature = 0x20, kEncipheredPin = 0x10;

constexpr uint64_t kCash = 0x01, kGoodsWithCashback = 0x09;

// The second digit of the terminal's type: 1 to 3 attended, 4 to 6 unattended.
bool is_unattended(const Bytes& type) { return (number(type) & 0x0F) >= 4; }

uint8_t needed_for(const VerificationRule& rule) {
    switch (rule.code & 0x3F) {
        case 0x01:
            return kPlainPin;
        case 0x02:
            return kOnlinePin;
        case 0x03:
            return kPlainPin | kSignature;
        case 0x04:
            return kEncipheredPin;
        case 0x05:
            return kEncipheredPin | kSignature;
        case 0x1E:
            return kSignature;
        default:
            return 0;
    }
}

}  // namespace

Method VerificationRule::method() const noexcept {
    switch (code & 0x3F) {
        case 0x00:
            return Method::kFails;
        case 0x01:
        case 0x04:
            return Method::kOfflinePin;
        case 0x02:
            return Method::kOnlinePin;
        case 0x03:
        case 0x05:
            return Method::kOfflinePinAndSignature;
        case 0x1E:
            return Method::kSignature;
        case 0x1F:
            return Method::kNone;
        default:
            return Method::kUnknown;
    }
}

VerificationList verification_list(ByteView object) {
    static constexpr size_t kAmountSize = 4;
    static constexpr size_t kHead = 2 * kAmountSize;
    VerificationList list;
    if (object.size() < kHead) { return list; }
    list.x = number(object.first(kAmountSize));
    list.y = number(object.subspan(kAmountSize, kAmountSize));
    for (size_t i = kHead; i + 1 < object.size(); i += 2) { list.rules.push_back({object[i], object[i + 1]}); }
    return list;
}

Bytes verification_object(Verification verification) {
    Bytes object(8);
    switch (verification) {
        case Verification::kOnlinePin:
            append(object, Bytes{0x42, 0x03});
            break;
        case Verification::kOfflinePin:
            append(object, Bytes{0x41, 0x03});
            break;
        case Verification::kSignature:
            append(object, Bytes{0x1E, 0x03});
            break;
        case Verification::kNone:
        case Verification::kDevice:
            append(object, Bytes{0x1F, 0x03});
            break;
    }
    return object;
}

VerificationContext VerificationContext::of(const DataObjects& objects) {
    const Bytes currency = value_of(objects, tag::kCurrency);
    const uint64_t type = number(value_of(objects, tag::kType));
    return {.amount = from_bcd(value_of(objects, tag::kAmount)),
            .capabilities = value_of(objects, card_tag::kCapabilities),
            .unattended = is_unattended(value_of(objects, card_tag::kTerminalType)),
            .cash = type == kCash,
            .cashback = type == kGoodsWithCashback || from_bcd(value_of(objects, tag::kCashback)) != 0,
            .ownCurrency = currency == value_of(objects, card_tag::kCurrency, currency)};
}

bool is_supported(const VerificationRule& rule, const VerificationContext& context) {
    const uint8_t able = context.capabilities.size() > 1 ? context.capabilities[1] : uint8_t{0};
    const uint8_t needed = needed_for(rule);
    return rule.method() != Method::kUnknown && (able & needed) == needed;
}

bool is_meant(const VerificationRule& rule, const VerificationList& list, const VerificationContext& context) {
    const bool ofCard = context.ownCurrency;
    switch (rule.condition) {
        case 0x00:
            return true;
        case 0x01:
            return context.unattended && context.cash;
        case 0x02:
            return !context.cash && !context.cashback;
        case 0x03:
            return is_supported(rule, context);
        case 0x04:
            return !context.unattended && context.cash;
        case 0x05:
            return context.cashback;
        case 0x06:
            return ofCard && context.amount < list.x;
        case 0x07:
            return ofCard && context.amount > list.x;
        case 0x08:
            return ofCard && context.amount < list.y;
        case 0x09:
            return ofCard && context.amount > list.y;
        default:
            return false;
    }
}

}  // namespace quorvel::sim
