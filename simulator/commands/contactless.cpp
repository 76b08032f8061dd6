// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/contactless.h"

#include <algorithm>

#include "simulator/cards/emv.h"
#include "wire/hex.h"

namespace quorvel::sim::commands {

namespace {

using enum RecordField;

bool says(const TableRecord& record, RecordField field, std::string_view digit) {
    return record.text(field) == std::optional<std::string>(digit);
}

bool is_below(const TableRecord& record, RecordField limit, uint64_t amount) {
    const auto value = record.limit(limit);
    return value && amount < *value;
}

bool is_of_visa(const Application& application) {
    static const Bytes kVisa = from_hex("A000000003");
    return std::ranges::equal(ByteView(application.aid).first(std::min(application.aid.size(), kVisa.size())), kVisa);
}

// Every other tap of a phone that wants its owner's word is one after that word was given, unless it comes fresh.
Status confirmed(Device& device, const Card& card) {
    if (!card.fresh && device.confirming == card.pan) {
        device.confirming.reset();
        return Status::kOk;
    }
    device.confirming = card.pan;
    return Status::kCtlsextcvm;
}

}  // namespace

Status contactless_status(Device& device, const Card& card, const TableRecord& record, const DataObjects& objects) {
    const Bytes told = value_of(objects, tag::kAmount);
    const uint64_t amount = from_bcd(told);
    if (says(record, kContactlessMode, "0")) { return Status::kCtlsappnav; }
    const auto most = record.limit(kContactlessLimit);
    if (most && amount > *most) { return Status::kCtlsifchg; }
    if (!told.empty() && amount == 0 && says(record, kContactlessZero, "0")) { return Status::kCtlsifchg; }
    const bool asks = contactless_verification(card, record, amount) == Verification::kDevice;
    return asks ? confirmed(device, card) : Status::kOk;
}

Verification contactless_verification(const Card& card, const TableRecord& record, uint64_t amount) {
    return is_below(record, kContactlessVerification, amount) ? Verification::kNone : card.contactless->verification;
}

DataObjects contactless_objects(const Application& application, const TableRecord& record, uint64_t amount) {
    static constexpr uint8_t kReads = 0x36;  // chip and antenna, PIN online, signature
    static constexpr uint8_t kOnline = 0x80;
    static constexpr uint8_t kVerified = 0x40;
    static constexpr uint8_t kByDevice = 0x40;
    if (!is_of_visa(application)) { return {}; }
    const uint8_t online = is_below(record, kContactlessFloor, amount) ? uint8_t{0} : kOnline;
    const uint8_t verified = is_below(record, kContactlessVerification, amount) ? uint8_t{0} : kVerified;
    return {{card_tag::kTerminalQualifiers, {kReads, static_cast<uint8_t>(online | verified), kByDevice, 0x00}}};
}

}  // namespace quorvel::sim::commands
