// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fmt/format.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "simulator/cards/emv.h"
#include "simulator/cards/pan_mask.h"
#include "simulator/commands/card_reading.h"
#include "simulator/commands/emv_params.h"
#include "simulator/commands/handlers.h"
#include "simulator/commands/params.h"
#include "simulator/commands/plausible.h"
#include "simulator/commands/widths.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kDateDigits = 6;
constexpr size_t kMaxTypes = 10;
constexpr size_t kMaxRecords = 128;

Bytes digits(Reader& value) { return bcd(value.n("digits", kDateDigits), kDateDigits / 2); }

std::set<unsigned> types(Reader& value) {
    std::set<unsigned> types;
    for (size_t count = 0; count == 0 || (value.left() != 0 && count < kMaxTypes); ++count) {
        types.insert(static_cast<unsigned>(value.n("type", 2, {1, 98})));
    }
    return types;
}

std::set<std::pair<unsigned, std::string>> records(Reader& value) {
    std::set<std::pair<unsigned, std::string>> records;
    for (size_t count = 0; count == 0 || (value.left() != 0 && count < kMaxRecords); ++count) {
        const auto acquirer = static_cast<unsigned>(value.n("acquirer", 2));
        records.emplace(acquirer, value.a("record", kRecordIndexWidth));
    }
    return records;
}

// The first digit allows contactless cards; the others stand for nothing.
bool allows_contactless(Reader& value) {
    const bool allowed = value.n("contactless", 1) != 0;
    static_cast<void>(value.n("others", 4));
    return allowed;
}

CardRequest card_request(const Params& params) {
    CardRequest request;
    request.acquirer = params.find(spe::kAcqRef, two_digits).value_or(0);
    request.types = params.find(spe::kAppType, types).value_or(request.types);
    request.records = params.find(spe::kAidList, records).value_or(request.records);
    request.contactless = params.find(spe::kGcxOpt, allows_contactless).value_or(true);
    request.message = params.find(spe::kDspMsg, message).value_or("");
    request.objects = transaction_objects(params);
    request.objects[tag::kDate] = params.get(spe::kTrnDate, digits);
    request.objects[tag::kTime] = params.get(spe::kTrnTime, digits);
    return request;
}

void add_number(std::vector<Param>& params, uint16_t id, uint64_t number, size_t width) {
    params.push_back({id, Writer().n(number, width).bytes()});
}

void add_text(std::vector<Param>& params, uint16_t id, const std::string& text) {
    if (!text.empty()) { params.push_back({id, to_bytes(text)}); }
}

// Card number and tracks go out masked: GTK gives them whole, or enciphered.
void add_card(std::vector<Param>& params, const Card& card, const PanMask& mask) {
    const auto open = [&](const std::string& text) { return masked(text, card.pan.size(), mask); };
    add_text(params, pp::kPan, open(card.pan));
    add_text(params, pp::kTrk1Inc, open(card.track1));
    add_text(params, pp::kTrk2Inc, open(card.track2));
    add_text(params, pp::kTrk3Inc, open(card.track3));
    add_text(params, pp::kChName, card.name);
    add_text(params, pp::kCardExp, card.expiry);
}

void add_application(std::vector<Param>& params, const Application& application, const Card& card) {
    params.push_back(
        {pp::kAidTabInfo, Writer().n(application.acquirer, 2).a(application.record, 2).n(application.type, 2).bytes()});
    add_text(params, pp::kLabel, application.label);
    add_number(params, pp::kPanSeqNo, card.panSequence, 2);
    add_number(params, pp::kIssCntry, card.issuerCountry, 3);
}

Answer gcx_answer(const CardRead& read, const PanMask& mask, const std::optional<std::vector<Tag>>& tags) {
    static constexpr unsigned kCardDevice = 0;
    std::vector<Param> params;
    add_number(params, pp::kCardType, static_cast<unsigned>(read.type), 2);
    add_number(params, pp::kIccStat, static_cast<unsigned>(read.lastChip), 1);
    add_card(params, read.card, mask);
    if (read.application) { add_application(params, *read.application, read.card); }
    if (read.type == CardType::kContactless || read.type == CardType::kContactlessStripe) {
        add_number(params, pp::kDevType, kCardDevice, 2);
    }
    return with_emv_data(std::move(params), read.objects, tags);
}

}  // namespace

Outcome gcx(Call& call) {
    const Params params(
        "GCX", call.request, {spe::kTrnDate, spe::kTrnTime},
        {spe::kTrnType, spe::kAcqRef, spe::kAppType, spe::kAidList, spe::kAmount, spe::kCashback, spe::kTrnCurr,
         spe::kGcxOpt, spe::kPanMask, spe::kEmvData, spe::kTagList, spe::kTimeout, spe::kDspMsg});
    const CardRequest request = card_request(params);
    judge_moment(call, "GCX", request.objects.at(tag::kDate), request.objects.at(tag::kTime));
    judge_twins(call, "GCX", request.objects, params.find(spe::kEmvData, emv_data).value_or(DataObjects()));
    const PanMask mask = params.pan_mask().value_or(PanMask{});
    const auto tags = params.find(spe::kTagList, tag_list);
    return read_card(call, request, params.timeout(),
                     [mask, tags](const CardRead& read) { return gcx_answer(read, mask, tags); });
}

}  // namespace quorvel::sim::commands
