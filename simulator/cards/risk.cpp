// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/risk.h"

#include "simulator/cards/emv.h"

namespace quorvel::sim {

namespace {

// Whether the amount, by itself or by chance, needs the issuer.
bool amount_goes_online(const Risk& risk, unsigned draw, DataObjects& objects) {
    if (!risk.managed) return false;
    if (risk.amount >= risk.floorLimit) {
        set(objects, terminal_result::floorLimitExceeded);
        return true;
    }
    if (!selected_at_random(risk, draw)) return false;
    set(objects, terminal_result::selectedAtRandom);
    return true;
}

void mark(const Risk& risk, const Verified& verified, DataObjects& objects) {
    if (risk.onExceptionList) set(objects, terminal_result::exceptionList);
    if (verified.failed) set(objects, terminal_result::verificationFailed);
    if (verified.pinBlocked) set(objects, terminal_result::pinTriesExceeded);
    if (verified.pinOnline) set(objects, terminal_result::onlinePinEntered);
}

}  // namespace

bool selected_at_random(const Risk& risk, unsigned draw) {
    if (risk.amount < risk.threshold) return draw <= risk.targetPercentage;
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
                             || wish == Chip::First::online;
    if (verified.failed || wish == Chip::First::declined) return Decision::declined;
    if (!needsIssuer) return Decision::approved;
    return risk.canGoOnline ? Decision::online : Decision::declined;
}

FinalDecision final_decision(Issuer issuer, Chip::Second wish) {
    switch (issuer) {
        case Issuer::declined:
            return FinalDecision::declinedByIssuer;
        case Issuer::approved:
            return wish == Chip::Second::declined ? FinalDecision::declinedByCard : FinalDecision::approved;
        case Issuer::unreachable:
            break;
    }
    return wish == Chip::Second::approved ? FinalDecision::approved : FinalDecision::declinedByCard;
}

}  // namespace quorvel::sim
