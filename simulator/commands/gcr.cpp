// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <string>
#include <utility>

#include "simulator/cards/emv.h"
#include "simulator/commands/card_reading.h"
#include "simulator/commands/handlers.h"
#include "simulator/commands/plausible.h"
#include "simulator/commands/widths.h"
#include "simulator/keys/pan_cipher.h"
#include "wire/hex.h"

namespace quorvel::sim::commands {

namespace {

constexpr unsigned kAnyType = 99;
constexpr size_t kMaxYear = 99;

struct GcrRequest {
    CardRequest card;
    // Of the tables that the host knows of; empty when it does not mind.
    std::string version;
};

Bytes three_numbers(Reader& fields, std::string_view field, std::array<Range, 3> ranges) {
    Bytes numbers;
    for (const Range& range : ranges) { append(numbers, bcd(fields.n(field, 2, range), 1)); }
    return numbers;
}

void read_records(Reader& fields, CardRequest& request) {
    for (uint64_t count = fields.n("GCR_QTDAID", 2); count > 0; --count) {
        const auto acquirer = static_cast<unsigned>(fields.n("GCR_AIDLIST", 2));
        request.records.emplace(acquirer, fields.a("GCR_AIDLIST", kRecordIndexWidth));
    }
    if (!request.records.empty() && !request.types.empty()) {
        throw LayoutError("GCR: GCR_AIDLIST: beside an application type");
    }
}

// What is behind the block is not counted by its length.
GcrRequest gcr_request(Reader& request) {
    GcrRequest read;
    Reader fields = request.block("CMD_LEN1");
    read.card.contactless = request.left() == 0 || request.n("GCR_CTLSON", 1, {0, 1}) == 1;
    request.end();
    read.card.acquirer = static_cast<unsigned>(fields.n("GCR_ACQIDXREQ", 2));
    const auto type = static_cast<unsigned>(fields.n("GCR_APPTYPREQ", 2));
    if (type != 0 && type != kAnyType) { read.card.types.insert(type); }
    read.card.objects[tag::kAmount] = bcd(fields.n("GCR_AMOUNT", kAmountDigits), kAmountDigits / 2);
    read.card.objects[tag::kDate] = three_numbers(fields, "GCR_DATE", {{{0, kMaxYear}, {1, 12}, {1, 31}}});
    read.card.objects[tag::kTime] = three_numbers(fields, "GCR_TIME", {{{0, 23}, {0, 59}, {0, 59}}});
    read.version = fields.a("GCR_TABVER", kTableVersionWidth);
    read_records(fields, read.card);
    fields.end();
    return read;
}

// Whether there are tables at all shows when a card's record is looked for.
Status tables_status(const Tables& tables, const GcrRequest& request) {
    if (request.version.empty()) { return Status::kOk; }
    if (tables.records().empty()) { return Status::kTaberr; }
    return tables.version(static_cast<int>(request.card.acquirer)) == request.version ? Status::kOk
                                                                                      : Status::kTabverdif;
}

// For two acquirers, each with a layout of its own.
Writer acquirer_fields(const CardRead& read) {
    static constexpr unsigned kFirstAcquirer = 1;
    static constexpr unsigned kSecondAcquirer = 2;
    static constexpr size_t kDataDigits = 32;
    static constexpr size_t kTextWidth = 16;
    static constexpr size_t kShortDataDigits = 10;
    Writer fields;
    if (!read.application) { return fields; }
    const Bytes& aid = read.application->aid;
    if (read.application->acquirer == kFirstAcquirer) {
        fields.n(2 * aid.size(), 2).h(aid, kDataDigits).a(read.application->label, kTextWidth).a("", kTextWidth);
    }
    if (read.application->acquirer == kSecondAcquirer) {
        fields.h(ByteView(aid).first(std::min(aid.size(), kShortDataDigits / 2)), kShortDataDigits);
    }
    return fields;
}

void write_application(Writer& fields, const std::optional<Application>& application) {
    const Application none{.aid = {}, .type = 0, .record = "00"};
    const Application& of = application.value_or(none);
    fields.n(of.type, 2).n(of.acquirer, 2).a(of.record, kRecordIndexWidth);
}

// Enciphered tracks take more room, and the length of track 3 makes way for it.
void write_tracks(Writer& fields, const Card& card, const std::optional<Bytes>& key) {
    static constexpr size_t kTrack1Width = 76;
    static constexpr size_t kTrack2Width = 37;
    static constexpr size_t kProtectedTrack2Width = 40;
    static constexpr size_t kTrack3Width = 104;
    static constexpr size_t kPanWidth = 19;
    const auto text = [&](const std::string& clear) { return key ? protect_pan(clear, *key) : clear; };
    const std::string track1 = text(card.track1);
    const std::string track2 = text(card.track2);
    const std::string track3 = text(card.track3);
    const std::string pan = text(card.pan);
    fields.n(track1.size(), 2).a(track1, kTrack1Width);
    fields.n(track2.size(), 2).a(track2, key ? kProtectedTrack2Width : kTrack2Width);
    if (!key) { fields.n(track3.size(), 3); }
    fields.a(track3, kTrack3Width).n(pan.size(), 2).a(pan, kPanWidth);
}

void write_holder(Writer& fields, const CardRead& read) {
    static constexpr size_t kLabelWidth = 16;
    static constexpr size_t kNameWidth = 26;
    const Card& card = read.card;
    fields.n(card.panSequence, 2).a(read.application ? read.application->label : "", kLabelWidth);
    fields.b(to_bytes(fmt::format("{:0>3}", card.serviceCode))).a(card.name, kNameWidth);
    fields.b(to_bytes(fmt::format("{:0>6}", card.expiry)));
}

Answer gcr_answer(const CardRead& read, const std::optional<Bytes>& panKey) {
    static constexpr size_t kMoreWidth = 29;
    Writer fields;
    fields.n(static_cast<unsigned>(read.type), 2).n(static_cast<unsigned>(read.lastChip), 1);
    write_application(fields, read.application);
    write_tracks(fields, read.card, panKey);
    write_holder(fields, read);
    const Bytes more = acquirer_fields(read).bytes();
    return Answer::of(fields.a("", kMoreWidth).n(read.card.issuerCountry, 3).n(more.size(), 3).b(more));
}

Outcome read_for_gcr(Call& call, const CardRequest& request) {
    return read_card(call, request, std::nullopt,
                     [&device = call.device](const CardRead& read) { return gcr_answer(read, device.panKey); });
}

}  // namespace

// Without fields it goes on with what was asked for before, now that the tables are there, or takes any card.
Outcome gcr(Call& call) {
    if (call.request.left() == 0) { return read_for_gcr(call, call.device.cardRequest.value_or(CardRequest())); }
    const GcrRequest request = gcr_request(call.request);
    judge_moment(call, "GCR", request.card.objects.at(tag::kDate), request.card.objects.at(tag::kTime));
    call.device.cardRequest = request.card;
    const Status status = tables_status(call.device.tables, request);
    if (status != Status::kOk) { return Answer{.status = status}; }
    return read_for_gcr(call, request.card);
}

}  // namespace quorvel::sim::commands
