// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/risk.h"

#include "simulator/cards/emv.h"

namespace quorvel::sim {

namespace {

// The amount, by itself or by chance, needs the issuer.
void mark_amount(const Risk& risk, unsigned draw, DataObjects& objects) {
    if (!risk.managed) { return; }
    if (risk.amount >= risk.floorLimit) { return set(objects, terminal_result::kFloorLimitExceeded); }
    if (selected_at_random(risk, draw)) { set(objects, terminal_result::kSelectedAtRandom); }
}

void mark(const Risk& risk, const Verified& verified, DataObjects& objects) {
    if (risk.onExceptionList) { set(objects, terminal_result::kExceptionList); }
    if (verified.failed) { set(objects, terminal_result::kVerificationFailed); }
    if (verified.pinBlocked) { set(objects, terminal_result::kPinTriesExceeded); }
    if (verified.pinBypassed) { set(objects, terminal_result::kPinNotEntered); }
    if (verified.unknownMethod) { set(objects, terminal_result::kUnknownVerification); }
    if (verified.pinOnline) { set(objects, terminal_result::kOnlinePinEntered); }
}

}  // namespace

bool selected_at_random(const Risk& risk, unsigned draw) {
    if (risk.amount < risk.threshold) { return draw <= risk.targetPercentage; }
    if (risk.floorLimit <= risk.threshold || risk.maxPercentage < risk.targetPercentage) {
        return draw <= risk.targetPercentage;
    }
    const uint64_t growth = risk.maxPercentage - risk.targetPercentage;
    const uint64_t share = growth * (risk.amount - risk.threshold) / (risk.floorLimit - risk.threshold);
    return draw <= risk.targetPercentage + share;
}

Decision first_decision(const Risk& risk, const Verified& verified, Chip::First wish, unsigned draw,
                        DataObjects& objects, const ActionCodes& codes) {
    mark(risk, verified, objects);
    mark_amount(risk, draw, objects);
    const Bytes results = value_of(objects, tag::kTerminalResults);
    if (wish == Chip::First::kDeclined || meets(codes.denial, results)) { return Decision::kDeclined; }
    const bool wantsIssuer = wish == Chip::First::kOnline;
    if (!risk.canGoOnline) {
        return wantsIssuer || meets(codes.otherwise, results) ? Decision::kDeclined : Decision::kApproved;
    }
    return wantsIssuer || meets(codes.online, results) ? Decision::kOnline : Decision::kApproved;
}

FinalDecision final_decision(Issuer issuer, Chip::Second wish, bool denied) {
    switch (issuer) {
        case Issuer::kDeclined:
            return FinalDecision::kDeclinedByIssuer;
        case Issuer::kApproved:
            return wish == Chip::Second::kDeclined ? FinalDecision::kDeclinedByCard : FinalDecision::kApproved;
        case Issuer::kUnreachable:
            break;
    }
    const bool approves = wish == Chip::Second::kApproved || (wish == Chip::Second::kAsAsked && !denied);
    return approves ? FinalDecision::kApproved : FinalDecision::kDeclinedByCard;
}

}  // namespace quorvel::sim
