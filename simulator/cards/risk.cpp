// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/risk.h"

#include "simulator/cards/emv.h"

namespace quorvel::sim {

namespace {

// Whether the amount, by itself or by chance, needs the issuer.
bool amount_goes_online(const Risk& risk, unsigned draw, DataObjects& objects) {
    if (!risk.managed) { return false; }
    if (risk.amount >= risk.floorLimit) {
        set(objects, terminal_result::kFloorLimitExceeded);
        return true;
    }
    if (!selected_at_random(risk, draw)) { return false; }
    set(objects, terminal_result::kSelectedAtRandom);
    return true;
}

void mark(const Risk& risk, const Verified& verified, DataObjects& objects) {
    if (risk.onExceptionList) { set(objects, terminal_result::kExceptionList); }
    if (verified.failed) { set(objects, terminal_result::kVerificationFailed); }
    if (verified.pinBlocked) { set(objects, terminal_result::kPinTriesExceeded); }
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
                        DataObjects& objects) {
    mark(risk, verified, objects);
    const bool needsIssuer = amount_goes_online(risk, draw, objects) || risk.onExceptionList || verified.pinOnline
                             || wish == Chip::First::kOnline;
    if (verified.failed || wish == Chip::First::kDeclined) { return Decision::kDeclined; }
    if (!needsIssuer) { return Decision::kApproved; }
    return risk.canGoOnline ? Decision::kOnline : Decision::kDeclined;
}

FinalDecision final_decision(Issuer issuer, Chip::Second wish) {
    switch (issuer) {
        case Issuer::kDeclined:
            return FinalDecision::kDeclinedByIssuer;
        case Issuer::kApproved:
            return wish == Chip::Second::kDeclined ? FinalDecision::kDeclinedByCard : FinalDecision::kApproved;
        case Issuer::kUnreachable:
            break;
    }
    return wish == Chip::Second::kApproved ? FinalDecision::kApproved : FinalDecision::kDeclinedByCard;
}

}  // namespace quorvel::sim
