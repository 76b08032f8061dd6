// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <vector>

#include "simulator/commands/finish_chip.h"
#include "simulator/commands/go_on_chip.h"
#include "simulator/commands/handlers.h"
#include "simulator/commands/plausible.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kMaxEmvData = 256;
constexpr size_t kMaxScriptResults = 50;

// 0 for an answer of the issuer, 1 and 9 for none.
bool issuer_answered(Reader& fields) {
    static constexpr uint64_t kHighestFailure = 9;
    const uint64_t status = fields.n("FNC_COMMST", 1);
    if (status > 1 && status != kHighestFailure) { throw LayoutError("FNC: FNC_COMMST: no such status"); }
    return status == 0;
}

FinishRequest finish_request(Reader& fields) {
    FinishRequest request;
    const bool answered = issuer_answered(fields);
    fields.n("FNC_ISSMOD", 1, {0, 0});
    if (answered) {
        request.responseCode = response_code(fields, "FNC_ARC");
    } else {
        static_cast<void>(fields.a("FNC_ARC", 2));
    }
    const size_t length = fields.n("FNC_ISSDATLEN", 3);
    request.issuerData = decode_list(fields.h("FNC_ISSDAT", 2 * length));
    fields.n("FNC_ACQPRLEN", 3, {0, 0});
    fields.end();
    return request;
}

std::vector<Tag> tags(Reader fields) {
    const size_t count = fields.n("FNC_TAGSLEN", 3);
    const Bytes tags = fields.h("FNC_TAGS", 2 * count);
    fields.end();
    return split_tags(tags);
}

}  // namespace

Answer fnc(Call& call) {
    Reader fields = call.request.block("CMD_LEN1");
    const FinishRequest request = finish_request(fields);
    const std::vector<Tag> wanted = tags(call.request.block("CMD_LEN2"));
    call.request.end();
    if (auto unfit = unfit_transaction(call, Transaction::Stage::kOnline, "FNC")) { return *unfit; }
    judge_money(call, "FNC", {request.issuerData.begin(), request.issuerData.end()});
    const Finished finished = finish_chip(call.device, request);
    const Bytes found = encode(finished.objects, wanted);
    const Bytes& results = finished.scriptResults;
    if (found.size() > kMaxEmvData || results.size() > kMaxScriptResults) { return {.status = Status::kRspovrfl}; }
    Writer answer;
    answer.n(static_cast<unsigned>(finished.decision), 1).n(found.size(), 3).h(found, 2 * found.size());
    answer.n(results.size(), 2).h(results, 2 * results.size()).n(0, 3);
    return finished_answer(call.device, finished, Answer::of(answer));
}

}  // namespace quorvel::sim::commands
