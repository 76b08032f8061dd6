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
#include "simulator/commands/widths.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t dateDigits = 6;
constexpr size_t maxTypes = 10;
constexpr size_t maxRecords = 128;

Bytes digits(Reader& value) { return bcd(value.n("digits", dateDigits), dateDigits / 2); }

std::set<unsigned> types(Reader& value) {
    std::set<unsigned> types;
    for (size_t count = 0; count == 0 || (value.left() != 0 && count < maxTypes); ++count) {
        types.insert(static_cast<unsigned>(value.n("type", 2, {1, 98})));
    }
    return types;
}

std::set<std::pair<unsigned, std::string>> records(Reader& value) {
    std::set<std::pair<unsigned, std::string>> records;
    for (size_t count = 0; count == 0 || (value.left() != 0 && count < maxRecords); ++count) {
        const auto acquirer = static_cast<unsigned>(value.n("acquirer", 2));
        records.emplace(acquirer, value.a("record", recordIndexWidth));
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
    request.acquirer = params.find(spe::acqRef, two_digits).value_or(0);
    request.types = params.find(spe::appType, types).value_or(request.types);
    request.records = params.find(spe::aidList, records).value_or(request.records);
    request.contactless = params.find(spe::gcxOpt, allows_contactless).value_or(true);
    request.message = params.find(spe::dspMsg, message).value_or("");
    request.objects = transaction_objects(params);
    request.objects[tag::date] = params.get(spe::trnDate, digits);
    request.objects[tag::time] = params.get(spe::trnTime, digits);
    return request;
}

void add_number(std::vector<Param>& params, uint16_t id, uint64_t number, size_t width) {
    params.push_back({id, Writer().n(number, width).bytes()});
}

void add_text(std::vector<Param>& params, uint16_t id, const std::string& text) {
    if (!text.empty()) params.push_back({id, to_bytes(text)});
}

// Card number and tracks go out masked: GTK gives them whole, or enciphered.
void add_card(std::vector<Param>& params, const Card& card, const PanMask& mask) {
    const auto open = [&](const std::string& text) { return masked(text, card.pan.size(), mask); };
    add_text(params, pp::pan, open(card.pan));
    add_text(params, pp::trk1Inc, open(card.track1));
    add_text(params, pp::trk2Inc, open(card.track2));
    add_text(params, pp::trk3Inc, open(card.track3));
    add_text(params, pp::chName, card.name);
    add_text(params, pp::cardExp, card.expiry);
}

void add_application(std::vector<Param>& params, const Application& application, const Card& card) {
    params.push_back(
        {pp::aidTabInfo, Writer().n(application.acquirer, 2).a(application.record, 2).n(application.type, 2).bytes()});
    add_text(params, pp::label, application.label);
    add_number(params, pp::panSeqNo, card.panSequence, 2);
    add_number(params, pp::issCntry, card.issuerCountry, 3);
}

Answer gcx_answer(const CardRead& read, const PanMask& mask, const std::optional<std::vector<Tag>>& tags) {
    static constexpr unsigned cardDevice = 0;
    std::vector<Param> params;
    add_number(params, pp::cardType, static_cast<unsigned>(read.type), 2);
    add_number(params, pp::iccStat, static_cast<unsigned>(read.lastChip), 1);
    add_card(params, read.card, mask);
    if (read.application) add_application(params, *read.application, read.card);
    if (read.type == CardType::kContactless || read.type == CardType::kContactlessStripe) {
        add_number(params, pp::devType, cardDevice, 2);
    }
    return with_emv_data(std::move(params), read.objects, tags);
}

}  // namespace

Outcome gcx(Call& call) {
    const Params params(
        "GCX", call.request, {spe::trnDate, spe::trnTime},
        {spe::trnType, spe::acqRef, spe::appType, spe::aidList, spe::amount, spe::cashback, spe::trnCurr, spe::gcxOpt,
         spe::panMask, spe::emvData, spe::tagList, spe::timeout, spe::dspMsg});
    const CardRequest request = card_request(params);
    const PanMask mask = params.pan_mask().value_or(PanMask{});
    const auto tags = params.find(spe::tagList, tag_list);
    return read_card(call, request, params.timeout(),
                     [mask, tags](const CardRead& read) { return gcx_answer(read, mask, tags); });
}

}  // namespace quorvel::sim::commands
