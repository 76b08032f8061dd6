// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <fmt/format.h>
#include <utility>
#include <vector>

#include "simulator/cards/emv.h"
#include "simulator/commands/emv_params.h"
#include "simulator/commands/go_on_chip.h"
#include "simulator/commands/handlers.h"
#include "simulator/commands/params.h"
#include "simulator/commands/plausible.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

// A master key's method needs the working key, a DUKPT method has none.
PinKey pin_key(const Params& params) {
    static constexpr std::array<size_t, 4> kSizes{8, 16, 0, 0};
    PinKey key;
    key.method = static_cast<int>(params.get(spe::kMthdPin, [](Reader& value) {
        return value.n("method", 1, {0, 3});
    }));
    key.index = static_cast<int>(params.get(spe::kKeyIdx, two_digits));
    const size_t size = kSizes.at(static_cast<size_t>(key.method));
    const auto workingKey = params.find(spe::kWkEnc, [](Reader& value) { return value.b("key", value.left()); });
    if (workingKey && size == 0) { throw out_of_place("GOX", spe::kWkEnc); }
    if (!workingKey && size != 0) { throw LayoutError("GOX: no SPE_WKENC", Status::kMandat); }
    if (workingKey && workingKey->size() != size) {
        throw LayoutError(fmt::format("SPE_WKENC: {} bytes instead of {}", workingKey->size(), size));
    }
    key.workingKey = workingKey.value_or(Bytes());
    return key;
}

// The digits say that the card is on the exception list and that the issuer cannot be asked; the others stand for
// nothing.
void read_options(Reader& value, Risk& risk) {
    risk.onExceptionList = value.n("exception list", 1) == 1;
    risk.canGoOnline = value.n("offline only", 1) != 1;
    static_cast<void>(value.n("others", 3));
}

// Floor limit, target percentage, threshold and maximum percentage.
void read_terminal_parameters(Reader& value, Risk& risk) {
    risk.managed = true;
    risk.floorLimit = value.x("floor limit", 4);
    risk.targetPercentage = value.x("target percentage", 1, {0, 99});
    risk.threshold = value.x("threshold", 4);
    risk.maxPercentage = value.x("maximum percentage", 1, {0, 99});
}

Risk risk(const Params& params) {
    Risk risk;
    const auto apply = [&](uint16_t id, void (*read)(Reader&, Risk&)) {
        static_cast<void>(params.find(id, [&](Reader& value) { return read(value, risk), true; }));
    };
    apply(spe::kGoxOpt, read_options);
    apply(spe::kTrmPar, read_terminal_parameters);
    return risk;
}

Answer gox_answer(const Gone& gone, const std::optional<std::vector<Tag>>& tags, int method) {
    static constexpr int kFirstDukpt = 2;
    const Verified& verified = gone.verified;
    std::vector<Param> params;
    Writer result;
    result.n(static_cast<unsigned>(gone.decision), 1).n(verified.signature ? 1 : 0, 1);
    result.n(verified.pinOffline ? 1 : 0, 1).n(static_cast<unsigned>(verified.pinErrors), 1);
    result.n(verified.pinBlocked ? 1 : 0, 1).n(verified.pinOnline ? 1 : 0, 1);
    params.push_back({pp::kGoxRes, result.bytes()});
    if (gone.pin) { params.push_back({pp::kPinBlk, gone.pin->block}); }
    if (gone.pin && method >= kFirstDukpt) {
        params.push_back({pp::kKsn, {gone.pin->ksn.begin(), gone.pin->ksn.end()}});
    }
    return with_emv_data(std::move(params), gone.objects, tags);
}

// What GCX was told, when GOX is not.
Bytes known_amount(const Device& device) {
    const DataObjects& objects = device.transaction->objects;
    const auto found = objects.find(tag::kAmount);
    return found != objects.end() ? found->second : Bytes();
}

}  // namespace

Outcome gox(Call& call) {
    const Params params("GOX", call.request, {spe::kAcqRef, spe::kMthdPin, spe::kKeyIdx},
                        {spe::kWkEnc, spe::kTrnType, spe::kAmount, spe::kCashback, spe::kTrnCurr, spe::kGoxOpt,
                         spe::kDspMsg, spe::kTrmPar, spe::kEmvData, spe::kTagList, spe::kTimeout});
    GoRequest request;
    request.key = pin_key(params);
    request.risk = risk(params);
    request.message = params.find(spe::kDspMsg, message).value_or("");
    request.objects = transaction_objects(params);
    const unsigned acquirer = params.get(spe::kAcqRef, two_digits);
    const auto tags = params.find(spe::kTagList, tag_list);
    const auto limit = params.timeout();
    if (auto unfit = unfit_transaction(call, Transaction::Stage::kSelected, "GOX")) { return *unfit; }
    judge_acquirer(call, "GOX", acquirer);
    judge_twins(call, "GOX", request.objects, params.find(spe::kEmvData, emv_data).value_or(DataObjects()));
    judge_money(call, "GOX", request.objects);
    const auto amount = request.objects.find(tag::kAmount);
    request.risk.amount = from_bcd(amount != request.objects.end() ? amount->second : known_amount(call.device));
    const int method = request.key.method;
    return go_on_chip(call, request, limit, [=](const Gone& gone) { return gox_answer(gone, tags, method); });
}

}  // namespace quorvel::sim::commands
