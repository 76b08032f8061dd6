// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <utility>
#include <vector>

#include "simulator/commands/emv_params.h"
#include "simulator/commands/finish_chip.h"
#include "simulator/commands/go_on_chip.h"
#include "simulator/commands/handlers.h"
#include "simulator/commands/params.h"
#include "simulator/commands/plausible.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

// The first digit tells whether the issuer answered; the others stand for nothing.
bool issuer_answered(Reader& value) {
    static constexpr uint64_t kHighestAnswer = 1;
    const bool answered = value.n("answer", 1) <= kHighestAnswer;
    static_cast<void>(value.n("others", 3));
    return answered;
}

FinishRequest finish_request(const Params& params) {
    FinishRequest request;
    request.responseCode = params.find(spe::kArc, [](Reader& value) { return response_code(value, "SPE_ARC"); });
    const bool answered = params.get(spe::kFcxOpt, issuer_answered);
    if (answered && !request.responseCode) { throw LayoutError("FCX: no SPE_ARC", Status::kMandat); }
    if (!answered && request.responseCode) { throw out_of_place("FCX", spe::kArc); }
    const auto data =
        params.find(spe::kEmvData, [](Reader& value) { return decode_list(value.b("objects", value.left())); });
    if (data) { request.issuerData = *data; }
    return request;
}

}  // namespace

// Nobody is waited for: a time-out has nothing to limit.
Answer fcx(Call& call) {
    const Params params("FCX", call.request, {spe::kFcxOpt}, {spe::kArc, spe::kEmvData, spe::kTagList, spe::kTimeout});
    const FinishRequest request = finish_request(params);
    const auto tags = params.find(spe::kTagList, tag_list);
    static_cast<void>(params.timeout());
    if (auto unfit = unfit_transaction(call, Transaction::Stage::kOnline, "FCX")) { return *unfit; }
    judge_money(call, "FCX", {request.issuerData.begin(), request.issuerData.end()});
    const Finished finished = finish_chip(call.device, request);
    std::vector<Param> answer;
    answer.push_back({pp::kFcxRes, Writer().n(static_cast<unsigned>(finished.decision), 3).bytes()});
    if (!finished.scriptResults.empty()) { answer.push_back({pp::kIsResults, finished.scriptResults}); }
    return finished_answer(call.device, finished, with_emv_data(std::move(answer), finished.objects, tags));
}

}  // namespace quorvel::sim::commands
